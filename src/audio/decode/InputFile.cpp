#include "audio/decode/InputFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

namespace quorel {

namespace {
constexpr const char* kNotRegular = "not a regular file";

std::string systemError(int code) {
    return std::generic_category().message(code);
}
} // namespace

std::optional<InputFile> InputFile::open(const std::string& path, std::string& error) {
    struct stat status {};
    // Asked before the opening too: merely opening a FIFO or a device can wake whoever is behind
    // it.
    if (::stat(path.c_str(), &status) != 0) {
        error = systemError(errno);
        return std::nullopt;
    }
    if (!S_ISREG(status.st_mode)) {
        error = kNotRegular;
        return std::nullopt;
    }
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (descriptor < 0) {
        error = systemError(errno);
        return std::nullopt;
    }
    InputFile file(descriptor, 0);
    if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) {
        error = kNotRegular;
        return std::nullopt;
    }
    file.size_ = status.st_size;
    return file;
}

InputFile::InputFile(int descriptor, int64_t size)
    : descriptor_(descriptor)
    , size_(size) {}

InputFile::InputFile(InputFile&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1))
    , size_(other.size_) {}

InputFile::~InputFile() {
    if (descriptor_ >= 0) {
        ::close(descriptor_);
    }
}

std::size_t InputFile::readAt(int64_t offset, std::span<std::byte> buffer) const {
    std::size_t done = 0;
    while (done < buffer.size()) {
        const ssize_t got = ::pread(descriptor_, buffer.data() + done, buffer.size() - done,
                                    offset + static_cast<int64_t>(done));
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got <= 0) {
            break;
        }
        done += static_cast<std::size_t>(got);
    }
    return done;
}

} // namespace quorel
