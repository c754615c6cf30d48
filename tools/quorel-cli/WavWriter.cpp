#include "tools/quorel-cli/WavWriter.h"

#include "tools/quorel-cli/OpenTrack.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <bit>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

namespace quorel::cli {

namespace {

static_assert(std::endian::native == std::endian::little, "samples are written as they lie");

constexpr uint32_t kSee64 = 0xFFFFFFFF; // RF64: the size stands in the ds64 chunk
constexpr uint32_t kDs64Bytes = 28;
constexpr uint16_t kFormatFloat = 3;

/// Bytes of a header, little-endian.
class Header {
  public:
    Header& tag(std::string_view four) { return bytes(four.data(), 4); }
    template <class Integer>
    Header& number(Integer value) {
        return bytes(&value, sizeof value);
    }
    const std::string& text() const { return text_; }

  private:
    Header& bytes(const void* data, std::size_t size) {
        text_.append(static_cast<const char*>(data), size);
        return *this;
    }

    std::string text_;
};

// RIFF (Multimedia Programming Interface 1.0, with the fact chunk that formats other than PCM need)
// and RF64 (EBU Tech 3306): the room for ds64 is kept by a JUNK chunk until it is needed.
std::string header(int sampleRate, int channels, uint64_t dataBytes) {
    const auto frameBytes = static_cast<uint16_t>(channels * 4);
    const auto rate = static_cast<uint32_t>(sampleRate);
    constexpr uint32_t kAfterRiff = 4 + (8 + kDs64Bytes) + (8 + 18) + (8 + 4) + 8;
    const uint64_t riffBytes = kAfterRiff + dataBytes;
    const uint64_t frames = dataBytes / frameBytes;
    const bool large = riffBytes >= kSee64;
    const auto size = [large](uint64_t bytes) {
        return large ? kSee64 : static_cast<uint32_t>(bytes);
    };
    Header out;
    out.tag(large ? "RF64" : "RIFF").number(size(riffBytes)).tag("WAVE");
    out.tag(large ? "ds64" : "JUNK").number(kDs64Bytes);
    out.number(large ? riffBytes : 0).number(large ? dataBytes : 0).number(large ? frames : 0);
    out.number(uint32_t{0}); // no sizes of other chunks
    out.tag("fmt ").number(uint32_t{18}).number(kFormatFloat);
    out.number(static_cast<uint16_t>(channels)).number(rate).number(rate * frameBytes);
    out.number(frameBytes).number(uint16_t{32}).number(uint16_t{0});
    out.tag("fact").number(uint32_t{4}).number(size(frames));
    out.tag("data").number(size(dataBytes));
    return out.text();
}

} // namespace

WavWriter::WavWriter(const std::string& path, int sampleRate, int channels)
    : path_(path)
    , sampleRate_(sampleRate)
    , channels_(channels) {
    // Renaming would put a file in the place of a link or a device.
    std::error_code none;
    if (const auto target = std::filesystem::canonical(path, none); !none) {
        path_ = target.string();
        if (!std::filesystem::is_regular_file(target, none)) {
            error_ = aboutFile(path, QStringLiteral("is not a regular file"));
            return;
        }
    }
    temporary_ = path_ + '.' + std::to_string(getpid()) + ".part";
    descriptor_ = ::open(temporary_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (descriptor_ < 0) {
        fail(errno);
        return;
    }
    writeHeader();
}

WavWriter::~WavWriter() {
    if (descriptor_ >= 0) {
        ::close(descriptor_);
        ::unlink(temporary_.c_str());
    }
}

void WavWriter::write(std::span<const float> interleaved) {
    writeAll(interleaved.data(), interleaved.size_bytes());
    dataBytes_ += interleaved.size_bytes();
}

void WavWriter::finish() {
    if (!hasFailed() && ::lseek(descriptor_, 0, SEEK_SET) != 0) {
        fail(errno);
    }
    writeHeader();
    if (!hasFailed() && (::close(std::exchange(descriptor_, -1)) != 0 ||
                         ::rename(temporary_.c_str(), path_.c_str()) != 0)) {
        fail(errno);
        ::unlink(temporary_.c_str());
    }
}

void WavWriter::writeHeader() {
    const std::string text = header(sampleRate_, channels_, dataBytes_);
    writeAll(text.data(), text.size());
}

void WavWriter::writeAll(const void* data, std::size_t size) {
    const char* next = static_cast<const char*>(data);
    while (size > 0 && !hasFailed()) {
        const ssize_t written = ::write(descriptor_, next, size);
        if (written >= 0) {
            next += written;
            size -= static_cast<std::size_t>(written);
        } else if (errno != EINTR) {
            fail(errno);
        }
    }
}

void WavWriter::fail(int number) {
    error_ = aboutFile(path_, QString::fromStdString("cannot be written: " +
                                                     std::generic_category().message(number)));
}

} // namespace quorel::cli
