#include "media/tags/FileCopy.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <vector>

namespace quorel {

int copyBytes(int from, int64_t offset, int64_t bytes, int to) {
    off64_t at = offset;
    const off64_t end = offset + bytes;
    for (ssize_t moved = 1; at < end && moved > 0;) {
        moved = ::copy_file_range(from, &at, to, nullptr, static_cast<size_t>(end - at), 0);
    }
    // Not every file system can do that; where the disk is what fails, this fails alike.
    std::vector<char> buffer(at < end ? 1 << 20 : 0);
    while (at < end) {
        const auto wanted = std::min<size_t>(buffer.size(), static_cast<size_t>(end - at));
        const ssize_t got = ::pread(from, buffer.data(), wanted, at);
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got <= 0) {
            return got < 0 ? errno : EIO; // the file has shrunk
        }
        if (const int error = writeBytes(to, {buffer.data(), got})) {
            return error;
        }
        at += got;
    }
    return 0;
}

int writeBytes(int to, QByteArrayView bytes) {
    while (!bytes.isEmpty()) {
        const ssize_t done = ::write(to, bytes.data(), static_cast<size_t>(bytes.size()));
        if (done < 0 && errno != EINTR) {
            return errno;
        }
        bytes = bytes.sliced(std::max<ssize_t>(done, 0));
    }
    return 0;
}

} // namespace quorel
