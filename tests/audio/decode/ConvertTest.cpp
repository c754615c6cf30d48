#include "audio/decode/ChannelMapper.h"
#include "audio/decode/RateConverter.h"
#include "support/Spectrum.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace quorel {

namespace {

constexpr double kTwoPi = 2 * std::numbers::pi;

std::vector<float> stereoSine(double hertz, int rate, int64_t frames) {
    std::vector<float> samples;
    for (int64_t n = 0; n < frames; ++n) {
        const double phase = kTwoPi * hertz * static_cast<double>(n) / rate;
        samples.push_back(static_cast<float>(0.5 * std::sin(phase)));
        samples.push_back(static_cast<float>(0.5 * std::cos(phase)));
    }
    return samples;
}

// The whole stream, fed and fetched in uneven portions.
std::vector<float> convert(RateConverter& converter, const std::vector<float>& in) {
    std::vector<float> out;
    std::vector<float> portion(2 * 777);
    const auto frames = static_cast<int64_t>(in.size() / 2);
    for (int64_t at = 0; at < frames;) {
        const auto [consumed, produced] = converter.process(
            in.data() + 2 * at, std::min<int64_t>(frames - at, 1 + at % 1500), portion.data(), 777);
        out.insert(out.end(), portion.begin(), portion.begin() + 2 * produced);
        at += consumed;
    }
    while (const int64_t produced = converter.drain(portion.data(), 777))
        out.insert(out.end(), portion.begin(), portion.begin() + 2 * produced);
    return out;
}

struct Rates {
    int in;
    int out;
};

class RateConverterTest : public testing::TestWithParam<Rates> {};

TEST_P(RateConverterTest, KeepsLengthPlaceAndPassband) {
    const auto [inRate, outRate] = GetParam();
    const int64_t frames = inRate * 2 + 1;
    RateConverter converter(2, inRate, outRate);
    ASSERT_FALSE(converter.passthrough());
    // Near the band's upper edge the level may sag by 0.01 dB, but nothing may be late.
    const std::pair<double, double> tones[] = {{997, 1e-5},
                                               {0.42 * std::min(inRate, outRate), 6e-4}};
    for (const auto& [hertz, tolerance] : tones) {
        converter.reset();
        const std::vector<float> out = convert(converter, stereoSine(hertz, inRate, frames));
        const double exact = static_cast<double>(frames) * outRate / inRate;
        EXPECT_LE(std::abs(static_cast<double>(out.size()) / 2 - exact), 1) << hertz;
        const std::vector<float> ideal =
            stereoSine(hertz, outRate, static_cast<int64_t>(out.size() / 2));
        double worst = 0;
        const auto edge = out.size() / 20; // where the sine starts and stops
        for (std::size_t i = edge; i + edge < out.size(); ++i)
            worst = std::max(worst, std::abs(double{out[i]} - double{ideal[i]}));
        EXPECT_LT(worst, tolerance) << hertz;
    }
}

INSTANTIATE_TEST_SUITE_P(, RateConverterTest,
                         testing::Values(Rates{44100, 48000}, Rates{48000, 44100},
                                         Rates{44100, 96000}, Rates{192000, 48000},
                                         Rates{8000, 48000}, Rates{96000, 44100},
                                         Rates{37800, 48000}));

TEST(RateConverterStream, PassesEqualRatesUntouched) {
    RateConverter converter(2, 48000, 48000);
    EXPECT_TRUE(converter.passthrough());
    const std::vector<float> sine = stereoSine(440, 48000, 5000);
    EXPECT_TRUE(convert(converter, sine) == sine);
}

/// The left side of the middle one of three seconds of a tone, converted. Tones of whole hertz fill
/// it with whole periods at either rate.
std::vector<float> convertedTone(double hertz, int inRate, int outRate) {
    RateConverter converter(2, inRate, outRate);
    const std::vector<float> both = convert(converter, stereoSine(hertz, inRate, 3 * inRate));
    std::vector<float> left;
    for (auto i = static_cast<std::size_t>(2 * outRate); left.size() < both.size() / 6; i += 2)
        left.push_back(both[i]);
    return left;
}

/// In dB of the tone that went in.
double levelDb(const std::vector<float>& samples) {
    double sum = 0;
    for (const float x : samples)
        sum += static_cast<double>(x) * static_cast<double>(x);
    return 10 * std::log10(2 * sum / static_cast<double>(samples.size()) / (0.5 * 0.5));
}

class ResampleQuality : public testing::TestWithParam<Rates> {};

TEST_P(ResampleQuality, PassesTheAudibleBandFlatAndClean) {
    const auto [in, out] = GetParam();
    for (const double hertz : {20., 100., 997., 5000., 10000., 14000., 17000., 19000., 20000.}) {
        const std::vector<float> tone = convertedTone(hertz, in, out);
        EXPECT_NEAR(levelDb(tone), 0, 0.01) << hertz;
        // All else: images above half the lower rate, and what they alias to.
        EXPECT_LE(test::thdPlusNoiseDb(tone, out, hertz), -120) << hertz;
    }
}

TEST_P(ResampleQuality, LeavesNothingBesideATonePastTheAudibleBand) {
    const auto [in, out] = GetParam();
    const double nyquist = std::min(in, out) / 2.0;
    for (double hertz = 20500; hertz < nyquist; hertz += 500) {
        const std::vector<float> tone = convertedTone(hertz, in, out); // weaker than it went in
        EXPECT_LE(levelDb(tone) + test::thdPlusNoiseDb(tone, out, hertz), -120) << hertz;
    }
    // Between the two halves of the rates a tone has no place in the output.
    for (double hertz = nyquist + 50; hertz < in / 2.0; hertz += 300)
        EXPECT_LE(levelDb(convertedTone(hertz, in, out)), -120) << hertz;
}

INSTANTIATE_TEST_SUITE_P(, ResampleQuality,
                         testing::Values(Rates{44100, 48000}, Rates{48000, 44100}));

using rt::ChannelLayout;
using enum rt::Speaker;

struct Mapping {
    const char* name;
    ChannelLayout from;
    ChannelLayout to;
    std::vector<std::vector<double>> gains; // of the inputs to each output; 0 where it ends
};

constexpr double kHalfPower = std::numbers::sqrt2 / 2;
const ChannelLayout kMono = ChannelLayout::usual(1);
const ChannelLayout kStereo = ChannelLayout::usual(2);
const ChannelLayout kFivePointOne = ChannelLayout::usual(6);
const ChannelLayout kFivePointOneSide{
    6, {FrontLeft, FrontRight, FrontCenter, LowFrequency, SideLeft, SideRight}};
constexpr double kA = 1 / (1 + kHalfPower); // what a stereo side of 3.0 adds up to
constexpr double kB = kHalfPower * kA;
constexpr double kC = 1 / (1 + 2 * kHalfPower); // of 5.1
constexpr double kD = kHalfPower * kC;
constexpr double kE = 1 / (1 + 3 * kHalfPower); // and of 7.1
constexpr double kF = kHalfPower * kE;

const Mapping kMappings[] = {
    {"same", kStereo, kStereo, {{1}, {0, 1}}},
    {"mono to 5.1", kMono, kFivePointOne, {{1}, {1}}},
    {"stereo to mono", kStereo, kMono, {{0.5, 0.5}}},
    {"stereo to 5.1", kStereo, kFivePointOne, {{1}, {0, 1}}},
    {"3.0", ChannelLayout::usual(3), kStereo, {{kA, 0, kB}, {0, kA, kB}}},
    {"5.1 to stereo", kFivePointOne, kStereo, {{kC, 0, kD, 0, kD}, {0, kC, kD, 0, 0, kD}}},
    {"5.1 to mono", kFivePointOne, kMono, {{kC / 2, kC / 2, kD, 0, kD / 2, kD / 2}}},
    {"7.1 to stereo",
     ChannelLayout::usual(8),
     kStereo,
     {{kE, 0, kF, 0, kF, 0, kF}, {0, kE, kF, 0, 0, kF, 0, kF}}},
    {"5.1 to 5.1 with side speakers",
     kFivePointOne,
     kFivePointOneSide,
     {{1}, {0, 1}, {0, 0, 1}, {0, 0, 0, 1}, {0, 0, 0, 0, 1}, {0, 0, 0, 0, 0, 1}}},
    {"7.1 to 5.1",
     ChannelLayout::usual(8),
     kFivePointOne,
     {{0.5},
      {0, 0.5},
      {0, 0, 0.5},
      {0, 0, 0, 0.5},
      {0, 0, 0, 0, 0.5, 0, 0.5},
      {0, 0, 0, 0, 0, 0.5, 0, 0.5}}},
    {"swapped stereo", {2, {FrontRight, FrontLeft}}, kStereo, {{0, 1}, {1}}},
    {"unknown channels", {3, {}}, kStereo, {{1}, {0, 1}}},
    {"stereo to an unknown device", kStereo, {2, {}}, {{1}, {0, 1}}},
};

TEST(ChannelMapper, MixesByTheTable) {
    for (const Mapping& mapping : kMappings) {
        const ChannelMapper mapper(mapping.from, mapping.to);
        const auto inputs = static_cast<std::size_t>(mapping.from.channels);
        const auto outputs = static_cast<std::size_t>(mapping.to.channels);
        for (std::size_t i = 0; i < inputs; ++i) {
            // One channel sounds, in the middle one of three frames.
            std::vector<float> in(3 * inputs);
            in[inputs + i] = 1;
            std::vector<float> expected(3 * outputs);
            for (std::size_t o = 0; o < mapping.gains.size(); ++o)
                if (i < mapping.gains[o].size())
                    expected[outputs + o] = static_cast<float>(mapping.gains[o][i]);
            std::vector<float> out(expected.size(), 9);
            mapper.map(in.data(), out.data(), 3);
            EXPECT_THAT(out, testing::Pointwise(testing::FloatNear(1e-6F), expected))
                << mapping.name << " from " << i;
        }
    }
}

} // namespace

} // namespace quorel
