#pragma once

#include "audio/decode/Bytes.h"
#include "audio/decode/InputFile.h"

#include <algorithm>
#include <vector>

namespace quorel {

/// Reads big-endian numbers one after another from a part of a file, which may be a table of any
/// length: only a window of it is in memory.
class FileCursor {
  public:
    /// Bytes from `begin` to `end`, as far as the file has them.
    FileCursor(const InputFile& file, int64_t begin, int64_t end)
        : file_(file)
        , offset_(begin)
        , end_(std::min(end, file.size())) {}

    /// The next number of 1..8 bytes; 0 once the part is read to its end.
    uint64_t number(int bytes) {
        const std::byte* at = next(bytes);
        return at != nullptr ? loadUnsigned(at, bytes, std::endian::big) : 0;
    }

    void skip(int64_t bytes) { offset_ += std::min(bytes, std::max<int64_t>(0, end_ - offset_)); }
    bool has(int64_t bytes) const { return bytes <= end_ - offset_; }
    int64_t remaining() const { return end_ - offset_; }

  private:
    static constexpr int64_t kWindowBytes = 32768;

    const std::byte* next(int bytes) {
        if (!has(bytes)) {
            offset_ = end_;
            return nullptr;
        }
        if (offset_ < windowBegin_ ||
            offset_ + bytes > windowBegin_ + static_cast<int64_t>(window_.size())) {
            window_.resize(static_cast<std::size_t>(std::min(kWindowBytes, end_ - offset_)));
            windowBegin_ = offset_;
            window_.resize(file_.readAt(offset_, window_));
            if (static_cast<int64_t>(window_.size()) < bytes) {
                end_ = offset_; // the file has shrunk
                return nullptr;
            }
        }
        const std::byte* at = window_.data() + (offset_ - windowBegin_);
        offset_ += bytes;
        return at;
    }

    const InputFile& file_;
    int64_t offset_;
    int64_t end_;
    int64_t windowBegin_ = 0;
    std::vector<std::byte> window_;
};

} // namespace quorel
