// How clean the conversion between the two usual rates is, tone by tone.
#include "audio/decode/RateConverter.h"
#include "support/Spectrum.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace quorel::test {
namespace {

constexpr double kLevel = 0.5;

/// The middle one of three seconds of a tone, converted. Tones of whole hertz fill it with whole
/// periods at either rate.
std::vector<float> convertedTone(double hertz, int inRate, int outRate) {
    RateConverter converter(1, inRate, outRate);
    const std::vector<float> in = sine(kLevel, hertz, inRate, 3 * inRate);
    std::vector<float> out(3 * static_cast<std::size_t>(outRate));
    std::size_t made = 0;
    for (std::size_t at = 0; at < in.size();) {
        const auto [consumed, produced] =
            converter.process(in.data() + at, static_cast<int64_t>(in.size() - at),
                              out.data() + made, static_cast<int64_t>(out.size() - made));
        if (consumed == 0 && produced == 0)
            break; // as many frames as will come
        at += static_cast<std::size_t>(consumed);
        made += static_cast<std::size_t>(produced);
    }
    EXPECT_GE(made, 2 * static_cast<std::size_t>(outRate));
    return {out.begin() + outRate, out.begin() + 2 * outRate};
}

/// The level of a part, in dB of the tone that went in.
double levelDb(const std::vector<float>& samples) {
    double sum = 0;
    for (const float x : samples)
        sum += static_cast<double>(x) * static_cast<double>(x);
    return 10 * std::log10(2 * sum / static_cast<double>(samples.size()) / (kLevel * kLevel));
}

struct Rates {
    int in;
    int out;
};

class ResampleQuality : public testing::TestWithParam<Rates> {};

TEST_P(ResampleQuality, PassesTheAudibleBandFlatAndClean) {
    const auto [in, out] = GetParam();
    for (const double hertz : {20., 100., 997., 5000., 10000., 14000., 17000., 19000., 20000.}) {
        const std::vector<float> tone = convertedTone(hertz, in, out);
        EXPECT_NEAR(levelDb(tone), 0, 0.01) << hertz;
        // All else: images above half the lower rate, and what they alias to.
        EXPECT_LE(thdPlusNoiseDb(tone, out, hertz), -120) << hertz;
    }
}

TEST_P(ResampleQuality, LeavesNothingBesideATonePastTheAudibleBand) {
    const auto [in, out] = GetParam();
    const double nyquist = std::min(in, out) / 2.0;
    for (double hertz = 20500; hertz < nyquist; hertz += 500) {
        const std::vector<float> tone = convertedTone(hertz, in, out); // weaker than it went in
        EXPECT_LE(levelDb(tone) + thdPlusNoiseDb(tone, out, hertz), -120) << hertz;
    }
    // Between the two halves of the rates a tone has no place in the output.
    for (double hertz = nyquist + 50; hertz < in / 2.0; hertz += 300)
        EXPECT_LE(levelDb(convertedTone(hertz, in, out)), -120) << hertz;
}

INSTANTIATE_TEST_SUITE_P(, ResampleQuality,
                         testing::Values(Rates{44100, 48000}, Rates{48000, 44100}),
                         [](const auto& rates) {
                             return std::to_string(rates.param.in) + "To" +
                                    std::to_string(rates.param.out);
                         });

} // namespace
} // namespace quorel::test
