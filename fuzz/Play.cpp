#include "Play.h"

#include "Require.h"
#include "audio/decode/AudioFile.h"

#include <sys/mman.h>
#include <unistd.h>

#include <string>
#include <vector>

namespace quorel::fuzz {

namespace {

constexpr int64_t kFrames = 8192; // read at each place; enough to cross blocks of every codec

void readSome(AudioFile& file, std::vector<float>& frames) {
    const int64_t before = file.position();
    const int64_t got = file.read(frames.data(), kFrames);
    require(got >= 0 && got <= kFrames, "read gives 0 to as many frames as asked");
    require(before + got <= file.length(), "nothing follows the length");
    require(file.position() == before + got, "the position follows what was read");
}

} // namespace

void play(const uint8_t* data, std::size_t size, std::initializer_list<Mark> marks) {
    std::string bytes(data, data + size);
    for (const Mark& mark : marks) {
        if (bytes.size() >= mark.place + mark.bytes.size()) {
            bytes.replace(mark.place, mark.bytes.size(), mark.bytes);
        }
    }
    const int memory = ::memfd_create("fuzz", MFD_CLOEXEC);
    require(memory >= 0, "there is memory for the file");
    const auto written = ::write(memory, bytes.data(), bytes.size());
    require(written == static_cast<ssize_t>(bytes.size()), "the file is written");
    {
        const auto [file, error] = AudioFile::open("/proc/self/fd/" + std::to_string(memory));
        require((file == nullptr) == !error.empty(), "a file or the reason why not");
        if (file) {
            require(file->length() >= 0 && file->channels() >= 1, "a length and channels");
            std::vector<float> frames(static_cast<std::size_t>(kFrames * file->channels()));
            readSome(*file, frames);
            const int64_t end = file->length();
            for (const int64_t target : {end - 100, end / 2, int64_t{0}}) {
                if (file->seek(target)) {
                    readSome(*file, frames);
                }
            }
        }
    }
    ::close(memory);
}

} // namespace quorel::fuzz
