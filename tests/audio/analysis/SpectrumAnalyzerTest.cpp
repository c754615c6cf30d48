#include "audio/analysis/SpectrumAnalyzer.h"

#include "support/Spectrum.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <numbers>
#include <random>

namespace quorel::test {
namespace {

constexpr int kSize = 1024;
constexpr int kBars = 24;
using Bars = std::array<float, kBars>;

Bars barsOf(const std::vector<float>& samples) {
    SpectrumAnalyzer analyzer(kSize);
    Bars bars;
    bars.fill(0.5F);
    analyzer.magnitudes(samples, bars);
    return bars;
}

/// The bars by the definition of the Fourier transform.
Bars barsByDefinition(const std::vector<float>& samples) {
    Bars bars;
    for (int band = 0; band < kBars; ++band) {
        const int low = std::max(band * band * (kSize / 2) / (kBars * kBars), 1);
        const int high = std::max((band + 1) * (band + 1) * (kSize / 2) / (kBars * kBars), low + 1);
        double power = 0;
        for (int bin = low; bin < high; ++bin) {
            std::complex<double> sum = 0;
            for (int n = 0; n < kSize; ++n) {
                const double turn = 2 * std::numbers::pi * n / kSize;
                sum += std::polar(0.8165 * (1 - std::cos(turn)) *
                                      static_cast<double>(samples[static_cast<std::size_t>(n)]),
                                  -turn * bin);
            }
            power = std::max(power, std::norm(2.0 * sum) / (double(kSize) * kSize));
        }
        const double height = (10 * std::log10(power) + band * 12.0 / (kBars - 1) + 62) / 55;
        bars[static_cast<std::size_t>(band)] = static_cast<float>(std::clamp(height, 0.0, 1.0));
    }
    return bars;
}

TEST(Spectrum, ofNoise) {
    std::mt19937 random(1);
    std::normal_distribution<float> noise(0, 0.1F);
    for (int run = 0; run < 8; ++run) {
        std::vector<float> samples(kSize);
        std::ranges::generate(samples, [&] { return noise(random); });
        const Bars bars = barsOf(samples);
        const Bars expected = barsByDefinition(samples);
        for (std::size_t band = 0; band < kBars; ++band)
            EXPECT_NEAR(bars[band], expected[band], 2e-5) << band;
    }
}

TEST(Spectrum, emptyWithoutTheRightNumberOfSamples) {
    for (const int count : {0, kSize - 1, kSize + 1})
        EXPECT_EQ(barsOf(sine(0.5, 1000, 48000, count)), Bars{}) << count;
    EXPECT_EQ(barsOf(std::vector<float>(kSize)), Bars{}) << "silence";
}

} // namespace
} // namespace quorel::test
