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
#include <utility>

namespace quorel {

namespace {
// In the order in which they are asked; the last one claims whatever the others left.
constexpr std::array kReaders{kFlacReader, kWavReader, kAiffReader,
                              kCafReader,  kMp4Reader, kMpegReader};
} // namespace

IdentifiedFile identify(InputFile file) {
    const int64_t begin = endOfLeadingTags(file);
    const int64_t end = startOfTrailingTags(file, begin);
    std::array<std::byte, 64> bytes{};
    const std::span<const std::byte> head(bytes.data(), file.readAt(begin, bytes));
    const auto* reader = kReaders.begin();
    while (reader + 1 != kReaders.end() && !reader->recognises(head)) {
        ++reader;
    }
    return {AudioSource{std::move(file), begin, end}, *reader};
}

OpenedAudioFile AudioFile::open(const std::string& path) {
    std::string error;
    std::optional<InputFile> file = InputFile::open(path, error);
    if (!file) {
        return refuse(error);
    }
    if (file->size() == 0) {
        return refuse("the file is empty");
    }
    IdentifiedFile identified = identify(*std::move(file));
    return identified.reader.open(std::move(identified.source));
}

std::optional<AudioProperties> readAudioProperties(InputFile file) {
    IdentifiedFile identified = identify(std::move(file));
    if (identified.reader.measure != nullptr) {
        if (const auto measured = identified.reader.measure(identified.source)) {
            return measured;
        }
    }
    const auto opened = identified.reader.open(std::move(identified.source));
    if (!opened.file) {
        return std::nullopt;
    }
    return AudioProperties{opened.file->sampleRate(), opened.file->length(),
                           opened.file->dataRate()};
}

} // namespace quorel
