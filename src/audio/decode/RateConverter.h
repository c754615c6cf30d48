#pragma once

#include <cstdint>
#include <memory>

struct soxr;

namespace quorel {

/// Converts one stream of interleaved float frames from one sampling rate to another. The output is
/// aligned in time with the input: output frame n is heard at input frame n x in / out.
///
/// One thread; allocates while it processes. Equal rates pass untouched.
class RateConverter {
  public:
    struct Progress {
        int64_t consumed = 0; ///< input frames
        int64_t produced = 0; ///< output frames
    };

    /// Rates in Hz, kMinSampleRate..kMaxSampleRate. Throws std::bad_alloc.
    RateConverter(int channels, int inRate, int outRate);

    bool passthrough() const { return resampler_ == nullptr; }

    /// Takes up to `inFrames` and puts out up to `outCapacity` frames. Call again with the rest
    /// until all is consumed. Not after drain() without a reset().
    Progress process(const float* in, int64_t inFrames, float* out, int64_t outCapacity);

    /// The input has ended: puts out what is still held. Call until it returns 0; the output is
    /// then as long as the input, to the frame.
    int64_t drain(float* out, int64_t outCapacity);

    /// Forgets everything heard, as before the first frame of a new stream.
    void reset();

  private:
    struct Delete {
        void operator()(soxr* resampler) const;
    };
    int channels_;
    std::unique_ptr<soxr, Delete> resampler_;
};

} // namespace quorel
