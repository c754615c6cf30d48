#pragma once

#include "audio/decode/AudioReader.h"
#include "audio/decode/MpegFrame.h"

#include <functional>
#include <vector>

namespace quorel {

/// Goes from frame to frame through a stream of MPEG audio or ADTS, over whatever else lies
/// between the frames. Where it finds a frame depends on nothing but where it started from, so it
/// always counts the same ones.
class MpegWalker {
  public:
    /// `source` must outlive the walker. Long searches give up when `stop` says so.
    MpegWalker(const AudioSource& source, std::function<bool()> stop);

    /// Looks for the stream's first frame: one that others like it follow, not too far into the
    /// file. Then next() gives that one. False when the file holds no such stream.
    bool findStream();

    /// Moves to the next whole frame like the first one. False at the end of the stream, which is
    /// also where frames of another rate, channel count or codec begin; or stopped, and then it
    /// may be called again.
    bool next();

    /// Makes next() give the frame at a byte where it gave one before.
    void moveTo(int64_t offset) { nextOffset_ = offset; }

    /// The current frame, and its first byte's place in the file.
    const MpegFrame& frame() const { return frame_; }
    int64_t offset() const { return offset_; }
    /// Its bytes, header included; fewer where the file has shrunk. Until the next call.
    std::span<const std::byte> packet();

  private:
    std::span<const std::byte> bytesAt(int64_t offset, std::size_t count);
    std::optional<MpegFrame> headerAt(int64_t offset);
    bool isStart(int64_t offset, const MpegFrame& first);
    std::optional<MpegFrame> search(int64_t& offset, int64_t limit);

    const AudioSource& source_;
    std::function<bool()> stop_;
    uint32_t kind_ = 0; // of the stream's frames
    MpegFrame frame_;
    int64_t offset_ = 0;
    int64_t nextOffset_;
    std::vector<std::byte> window_; // the part of the file that was read last
    int64_t windowStart_ = 0;
    std::size_t windowBytes_ = 0;
};

} // namespace quorel
