#pragma once

#include "audio/decode/FlacFrame.h"
#include "audio/decode/InputFile.h"

#include <functional>
#include <vector>

namespace quorel {

/// A frame of a FLAC file whose checksums were both found right.
struct FlacFrame {
    int64_t offset = 0; ///< of its first byte
    int64_t bytes = 0;
    int64_t start = 0; ///< number of its first sample, counted from the start of the stream
    int blockFrames = 0;

    int64_t end() const { return start + blockFrames; }
    int64_t nextOffset() const { return offset + bytes; }
};

/// Finds frames in a FLAC stream without decoding: by their headers, each proved by the checksum
/// over the whole frame up to the next header or the end of the stream. That makes lengths and
/// positions exact in files that lack a seek table or a total, and finds the way on behind damage.
class FlacScanner {
  public:
    /// Looks in the bytes from `begin` to `end` for frames like the stream's first one. The
    /// searches give up when `stop` says so. `file` and `info` must outlive the scanner.
    FlacScanner(const InputFile& file, const FlacStreamInfo& info, int64_t begin, int64_t end,
                std::function<bool()> stop);

    /// Whether a frame was found at all.
    bool hasFrames() const { return first_.bytes > 0; }
    /// Where the frames were said to start, in bytes.
    int64_t begin() const { return begin_; }
    int sampleRate() const { return like_.sampleRate; }
    int channels() const { return like_.channels; }

    /// The header that stands at a byte, whatever format it is of.
    std::optional<FlacFrameHeader> headerAt(int64_t offset);
    /// Whether a frame is of the format that the stream began with. Sample sizes may change.
    bool belongs(const FlacFrameHeader& header) const;
    /// The number, from the start of the stream, of a frame's first sample.
    int64_t startOf(const FlacFrameHeader& header) const;

    /// The first proved frame that starts at or behind a byte.
    std::optional<FlacFrame> frameFrom(int64_t offset);
    /// A proved frame that starts at or before a sample, as near to it as frames can be proved; the
    /// first frame where all others start later. `length` is the stream's, in samples.
    FlacFrame frameBefore(int64_t sample, int64_t length);
    /// The last proved frame of the stream.
    FlacFrame last();

  private:
    std::span<const std::byte> bytesAt(int64_t offset, std::size_t count);
    std::optional<FlacFrame> find(int64_t offset, int64_t limit);
    std::optional<FlacFrame> proveAt(int64_t offset);
    std::optional<int64_t> endOfFrame(int64_t offset, const FlacFrameHeader& header);
    void learnNumbering();

    const InputFile& file_;
    const FlacStreamInfo& info_;
    int64_t begin_;
    int64_t end_;
    std::function<bool()> stop_;
    FlacFrameHeader like_;         // the first frame's header
    bool samplesNumbered_ = false; // frames bear the number of their first sample, not their own
    int64_t firstNumber_ = 0;
    FlacFrame first_;
    int64_t effort_ = 0; // bytes that the running search may still go over
    std::vector<std::byte> window_;
    int64_t windowOffset_ = 0;
    std::size_t windowBytes_ = 0;
};

} // namespace quorel
