#pragma once

#include "audio/decode/FlacFrame.h"
#include "audio/decode/InputFile.h"

#include <functional>
#include <memory>
#include <vector>

namespace quorel {

/// Decodes single FLAC frames, each at a known byte of the file. Where frames lie is the scanner's
/// business; here libFLAC sees one smooth stream of a STREAMINFO block and frames, and never seeks.
class FlacDecoder {
  public:
    enum class Outcome { Decoded, Damaged, Stopped };

    /// One decoded frame: interleaved samples, full scale +-1.
    struct Block {
        std::vector<float> samples;
        int frames = 0;
    };

    /// Throws std::bad_alloc. Decoding stops early when `stop` says so. `file` must outlive this.
    FlacDecoder(const InputFile& file, const FlacStreamInfo& info, int64_t end,
                std::function<bool()> stop);
    ~FlacDecoder();
    FlacDecoder(const FlacDecoder&) = delete;
    FlacDecoder& operator=(const FlacDecoder&) = delete;

    /// Decodes the frame that stands at a byte. After anything but Decoded, `block` is empty.
    Outcome decode(int64_t offset, const FlacFrameHeader& header, Block& block);

    /// The byte behind the last decoded frame.
    int64_t nextOffset() const { return nextOffset_; }

  private:
    class Library;

    std::unique_ptr<Library> library_;
    int64_t nextOffset_ = -1; // -1: the library has lost its place
};

} // namespace quorel
