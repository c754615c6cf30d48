#pragma once

#include "audio/decode/InputFile.h"

#include <taglib/tiostream.h>

#include <array>

namespace quorel {

/// A file of ours for TagLib to read: nothing is opened a second time, nor ever for writing. It
/// goes dry after a budget of bytes and calls, which bounds the time and memory that a damaged file
/// can take.
class TagLibStream final : public TagLib::IOStream {
  public:
    /// `file` must outlive the stream, whose byte 0 is its byte `begin`.
    TagLibStream(const InputFile& file, int64_t begin, int64_t maxBytes)
        : file_(file)
        , begin_(begin)
        , bytesLeft_(maxBytes) {}

    TagLib::FileName name() const override { return ""; }
    TagLib::ByteVector readBlock(unsigned long length) override;
    void seek(long offset, Position from = Beginning) override;
    long tell() const override { return position_; }
    long length() override { return isDry() ? 0 : file_.size() - begin_; }
    bool isOpen() const override { return true; }
    bool readOnly() const override { return true; }

    // What only writers call.
    void writeBlock(const TagLib::ByteVector&) override {}
    void insert(const TagLib::ByteVector&, unsigned long, unsigned long) override {}
    void removeBlock(unsigned long, unsigned long) override {}
    void truncate(long) override {}

  private:
    bool isDry() const { return bytesLeft_ <= 0 || callsLeft_ <= 0; }
    std::size_t readSmall(int64_t offset, std::span<std::byte> bytes);

    static constexpr int kMaxCalls = 100'000;

    const InputFile& file_;
    int64_t begin_;
    int64_t position_ = 0;
    int64_t bytesLeft_;
    int callsLeft_ = kMaxCalls;
    std::array<std::byte, 1024> window_{}; // headers are read in small pieces, one behind the other
    int64_t windowBegin_ = 0;
    int64_t windowBytes_ = 0;
};

} // namespace quorel
