#pragma once

#include "audio/decode/AudioFile.h"
#include "audio/decode/InputFile.h"
#include "audio/decode/PcmSamples.h"

#include <bit>
#include <vector>

namespace quorel {

/// Where uncompressed frames lie in a file, and how.
struct PcmData {
    int64_t offset = 0; ///< of the first frame, in bytes
    int64_t bytes = 0;  ///< of all frames; a last part of a frame is left out
    int frameBytes =
        0; ///< from frame to frame; the samples stand at the start, one after the other
    PcmSample sample = PcmSample::S16;
    std::endian order = std::endian::little;
};

/// Uncompressed audio, whatever container it lies in.
class PcmFile : public AudioFile {
  public:
    /// `data` may claim more than the file holds: the length is what is there.
    PcmFile(InputFile file, const rt::Format& format, const PcmData& data);

    double dataRate() const override;
    int64_t position() const override { return position_; }
    bool seek(int64_t frame) override;
    int64_t read(float* interleaved, int64_t frames) override;

  private:
    void convert(int64_t frames, float* out) const;

    InputFile file_;
    PcmData data_;
    int64_t position_ = 0;
    std::vector<std::byte> stored_; // the frames of one read from the disk
};

} // namespace quorel
