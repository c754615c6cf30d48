// Sound files of one kind, which QUOREL_FUZZ_KIND names: opened, played and sought in.
#include "Require.h"
#include "audio/decode/AudioFile.h"

#include <map>
#include <vector>

using namespace quorel;
using quorel::fuzz::require;

namespace {

constexpr int64_t kFrames = 8192; // read at each place; enough to cross blocks of every codec

/// What a file of a kind has at a place, so that the wanted reader takes it. MPEG audio and ADTS
/// begin with no mark; anything else that opens is played then, too.
const std::multimap<std::string, std::pair<std::size_t, std::string>> kMarks{
    {"aiff", {0, "FORM"}}, {"aiff", {8, "AIF"}}, {"caf", {0, "caff"}}, {"flac", {0, "fLaC"}},
    {"mp4", {4, "ftyp"}},  {"wav", {0, "RIFF"}}, {"wav", {8, "WAVE"}},
};

void readSome(AudioFile& file, std::vector<float>& frames) {
    const int64_t before = file.position();
    const int64_t got = file.read(frames.data(), kFrames);
    require(got >= 0 && got <= kFrames, "read gives 0 to as many frames as asked");
    require(before + got <= file.length(), "nothing follows the length");
    require(file.position() == before + got, "the position follows what was read");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    std::string bytes(data, data + size);
    const auto [first, end] = kMarks.equal_range(QUOREL_FUZZ_KIND);
    for (auto mark = first; mark != end; ++mark) {
        const auto& [place, text] = mark->second;
        if (bytes.size() >= place + text.size())
            bytes.replace(place, text.size(), text);
    }
    const fuzz::MemoryFile memory(bytes.data(), bytes.size());
    const auto [file, error] = AudioFile::open(memory.path());
    require((file == nullptr) == !error.empty(), "a file or the reason why not");
    if (file) {
        require(file->length() >= 0 && file->channels() >= 1, "a length and channels");
        std::vector<float> frames(static_cast<std::size_t>(kFrames * file->channels()));
        readSome(*file, frames);
        const int64_t length = file->length();
        for (const int64_t target : {length - 100, length / 2, int64_t{0}})
            if (file->seek(target))
                readSome(*file, frames);
    }
    return 0;
}
