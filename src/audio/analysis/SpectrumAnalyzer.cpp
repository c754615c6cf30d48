#include "audio/analysis/SpectrumAnalyzer.h"

#include <fftw3.h>

#include <algorithm>
#include <cassert>
#include <cmath>
#include <mutex>
#include <new>
#include <numbers>

namespace quorel {

namespace {
// FFTW plans share tables, so plans are made and destroyed one at a time.
std::mutex planning;
} // namespace

struct SpectrumAnalyzer::Transform {
    explicit Transform(std::size_t size)
        : in(fftwf_alloc_real(size))
        , out(fftwf_alloc_complex(size / 2 + 1)) {
        const std::lock_guard lock(planning);
        plan = fftwf_plan_dft_r2c_1d(static_cast<int>(size), in, out, FFTW_ESTIMATE);
    }
    ~Transform() {
        {
            const std::lock_guard lock(planning);
            fftwf_destroy_plan(plan);
        }
        fftwf_free(in);
        fftwf_free(out);
    }
    Transform(const Transform&) = delete;
    Transform& operator=(const Transform&) = delete;

    float* in;
    fftwf_complex* out;
    fftwf_plan plan = nullptr;
};

SpectrumAnalyzer::SpectrumAnalyzer(int size)
    : size_(static_cast<std::size_t>(size))
    , window_(size_)
    , transform_(std::make_unique<Transform>(size_)) {
    assert(size >= 4 && (size & (size - 1)) == 0);
    if (!transform_->plan) {
        throw std::bad_alloc();
    }
    const double scale = std::sqrt(2.0 / 3.0); // the Hann window with a mean square of 1
    for (std::size_t i = 0; i < size_; ++i) {
        const double phase = 2 * std::numbers::pi * static_cast<double>(i) / size;
        window_[i] = static_cast<float>(scale * (1 - std::cos(phase)));
    }
}

SpectrumAnalyzer::~SpectrumAnalyzer() = default;

// The largest power of the bins low..high-1.
double SpectrumAnalyzer::bandPower(std::size_t low, std::size_t high) const {
    float largest = 0;
    for (std::size_t bin = low; bin < high; ++bin) {
        const auto& [real, imaginary] = transform_->out[bin];
        largest = std::max(largest, real * real + imaginary * imaginary);
    }
    // The constants below belong to a transform of twice the height, hence the 4.
    const auto size = static_cast<double>(size_);
    return 4 * static_cast<double>(largest) / (size * size);
}

void SpectrumAnalyzer::magnitudes(std::span<const float> samples, std::span<float> bars) {
    constexpr double kFloorDb = -62; // a bar of height 0 at the low end
    constexpr double kRangeDb = 55;
    constexpr double kTiltDb = 12; // lift of the highest bar, where music has less power
    std::ranges::fill(bars, 0.0F);
    if (samples.size() != size_) {
        return;
    }
    std::ranges::transform(samples, window_, transform_->in, std::multiplies{});
    fftwf_execute(transform_->plan);

    const std::size_t half = size_ / 2;
    const auto bands = static_cast<double>(bars.size());
    // The square is a cheap approximation of a logarithmic axis. The lowest bin holds no tone.
    const auto edge = [&](std::size_t band) {
        const double place = static_cast<double>(band) / bands;
        return static_cast<std::size_t>(place * place * static_cast<double>(half));
    };
    for (std::size_t band = 0; band < bars.size(); ++band) {
        const std::size_t low = std::max<std::size_t>(edge(band), 1);
        const std::size_t high = std::max(std::min(edge(band + 1), half), low + 1);
        const double power = bandPower(low, high);
        const double db = power > 0 ? 10 * std::log10(power) : -90;
        const double tilt = static_cast<double>(band) / (std::max(bands, 2.0) - 1) * kTiltDb;
        bars[band] = static_cast<float>(std::clamp((db + tilt - kFloorDb) / kRangeDb, 0.0, 1.0));
    }
}

} // namespace quorel
