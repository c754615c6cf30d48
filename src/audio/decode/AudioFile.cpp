#include "audio/decode/AudioFile.h"

#include "audio/decode/AiffReader.h"
#include "audio/decode/AudioReader.h"
#include "audio/decode/AudioTags.h"
#include "audio/decode/CafReader.h"
#include "audio/decode/FlacFile.h"
#include "audio/decode/Mp4Reader.h"
#include "audio/decode/MpegFile.h"
#include "audio/decode/WavReader.h"

#include <array>

namespace quorel {

namespace {
// In the order in which they are asked; the last one claims whatever the others left.
constexpr std::array kReaders{kFlacReader, kWavReader, kAiffReader,
                              kCafReader,  kMp4Reader, kMpegReader};
} // namespace

OpenedAudioFile AudioFile::open(const std::string& path) {
    std::string error;
    std::optional<InputFile> file = InputFile::open(path, error);
    if (!file) {
        return refuse(error);
    }
    if (file->size() == 0) {
        return refuse("the file is empty");
    }
    const int64_t begin = endOfLeadingTags(*file);
    const int64_t end = startOfTrailingTags(*file, begin);
    std::array<std::byte, 64> bytes{};
    const std::span<const std::byte> head(bytes.data(), file->readAt(begin, bytes));
    for (const AudioReader& reader : kReaders) {
        if (reader.recognises(head)) {
            return reader.open(AudioSource{*std::move(file), begin, end});
        }
    }
    return refuse("not an audio file of a known format");
}

} // namespace quorel
