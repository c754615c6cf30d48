#pragma once

#include "audio/decode/InputFile.h"

#include <algorithm>
#include <array>

namespace quorel {

/// Reads the bytes of a tag one after the other, where need be without the zeros that
/// unsynchronisation has put behind every 0xFF. Only a window of the tag is in memory.
class Id3Cursor {
  public:
    Id3Cursor(const InputFile& file, int64_t begin, int64_t end, bool unsynchronised)
        : file_(file)
        , offset_(begin)
        , end_(end)
        , unsynchronised_(unsynchronised) {}

    int64_t offset() const { return offset_; }           ///< in the file
    int64_t remaining() const { return end_ - offset_; } ///< as stored, so never too few

    /// Fills `bytes` and returns how many there were: fewer only at the end.
    std::size_t read(std::span<std::byte> bytes) {
        std::size_t got = 0;
        while (got < bytes.size() && next(bytes[got])) {
            ++got;
        }
        return got;
    }

    void skip(int64_t bytes) {
        if (!unsynchronised_) {
            offset_ += std::min(bytes, remaining());
            return;
        }
        for (std::byte ignored{}; bytes > 0 && next(ignored); --bytes) {
        }
    }

  private:
    bool next(std::byte& byte) {
        if (!nextStored(byte)) {
            return false;
        }
        if (unsynchronised_ && last_ == std::byte{0xFF} && byte == std::byte{} &&
            !nextStored(byte)) {
            return false;
        }
        last_ = byte;
        return true;
    }

    bool nextStored(std::byte& byte) {
        if (offset_ >= end_) {
            return false;
        }
        if (offset_ < windowBegin_ || offset_ >= windowBegin_ + windowBytes_) {
            const auto wanted = std::min<int64_t>(remaining(), window_.size());
            windowBegin_ = offset_;
            windowBytes_ = static_cast<int64_t>(
                file_.readAt(offset_, std::span(window_).first(static_cast<std::size_t>(wanted))));
            if (windowBytes_ == 0) {
                end_ = offset_; // the file has shrunk
                return false;
            }
        }
        byte = window_[static_cast<std::size_t>(offset_ - windowBegin_)];
        ++offset_;
        return true;
    }

    const InputFile& file_;
    int64_t offset_;
    int64_t end_;
    bool unsynchronised_;
    std::byte last_{};
    std::array<std::byte, 4096> window_{};
    int64_t windowBegin_ = 0;
    int64_t windowBytes_ = 0;
};

} // namespace quorel
