#include "audio/decode/RateConverter.h"

#include <soxr.h>

#include <algorithm>
#include <new>

namespace quorel {

RateConverter::RateConverter(int channels, int inRate, int outRate)
    : channels_(channels) {
    if (inRate == outRate) {
        return;
    }
    soxr_error_t error = nullptr;
    const soxr_io_spec_t samples = soxr_io_spec(SOXR_FLOAT32_I, SOXR_FLOAT32_I);
    const soxr_quality_spec_t quality = soxr_quality_spec(SOXR_HQ, 0);
    const soxr_runtime_spec_t oneThread = soxr_runtime_spec(1);
    resampler_.reset(soxr_create(inRate, outRate, static_cast<unsigned>(channels), &error, &samples,
                                 &quality, &oneThread));
    if (!resampler_ || error != nullptr) {
        throw std::bad_alloc();
    }
}

void RateConverter::Delete::operator()(soxr* resampler) const {
    soxr_delete(resampler);
}

RateConverter::Progress RateConverter::process(const float* in, int64_t inFrames, float* out,
                                               int64_t outCapacity) {
    if (!resampler_) {
        const int64_t frames = std::min(inFrames, outCapacity);
        std::copy_n(in, frames * channels_, out);
        return {frames, frames};
    }
    if (inFrames == 0) {
        return {}; // no frames would mean the end of the input to the library
    }
    std::size_t consumed = 0;
    std::size_t produced = 0;
    soxr_process(resampler_.get(), in, static_cast<std::size_t>(inFrames), &consumed, out,
                 static_cast<std::size_t>(outCapacity), &produced);
    return {static_cast<int64_t>(consumed), static_cast<int64_t>(produced)};
}

int64_t RateConverter::drain(float* out, int64_t outCapacity) {
    if (!resampler_) {
        return 0;
    }
    std::size_t produced = 0;
    soxr_process(resampler_.get(), nullptr, 0, nullptr, out, static_cast<std::size_t>(outCapacity),
                 &produced);
    return static_cast<int64_t>(produced);
}

void RateConverter::reset() {
    if (resampler_) {
        soxr_clear(resampler_.get());
    }
}

} // namespace quorel
