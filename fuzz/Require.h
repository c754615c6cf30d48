#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace quorel::fuzz {

/// Ends the program where a promise, named in a few words, is broken.
inline void require(bool kept, const char* promise) {
    if (!kept) {
        std::fprintf(stderr, "broken: %s\n", promise);
        std::abort();
    }
}

/// A file in memory that holds these bytes.
class MemoryFile {
  public:
    MemoryFile(const void* bytes, std::size_t size) {
        require(number_ >= 0, "there is memory for the file");
        const auto written = ::write(number_, bytes, size);
        require(written == static_cast<ssize_t>(size), "the file is written");
    }
    ~MemoryFile() { ::close(number_); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    std::string path() const { return "/proc/self/fd/" + std::to_string(number_); }

  private:
    const int number_ = ::memfd_create("fuzz", MFD_CLOEXEC);
};

} // namespace quorel::fuzz
