#include "audio/decode/ChannelMapper.h"
#include "audio/decode/RateConverter.h"

#include <gtest/gtest.h>

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
    while (const int64_t produced = converter.drain(portion.data(), 777)) {
        out.insert(out.end(), portion.begin(), portion.begin() + 2 * produced);
    }
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
        for (std::size_t i = edge; i + edge < out.size(); ++i) {
            worst = std::max(worst, std::abs(double{out[i]} - double{ideal[i]}));
        }
        EXPECT_LT(worst, tolerance) << hertz;
    }
}

INSTANTIATE_TEST_SUITE_P(, RateConverterTest,
                         testing::Values(Rates{44100, 48000}, Rates{48000, 44100},
                                         Rates{44100, 96000}, Rates{192000, 48000},
                                         Rates{8000, 48000}, Rates{96000, 44100},
                                         Rates{37800, 48000}));

TEST(RateConverterStream, IsFreshAfterAReset) {
    RateConverter converter(2, 44100, 48000);
    const std::vector<float> sine = stereoSine(440, 44100, 20000);
    const std::vector<float> first = convert(converter, sine);
    converter.reset();
    EXPECT_TRUE(convert(converter, sine) == first);
}

TEST(RateConverterStream, PassesEqualRatesUntouched) {
    RateConverter converter(2, 48000, 48000);
    EXPECT_TRUE(converter.passthrough());
    const std::vector<float> sine = stereoSine(440, 48000, 5000);
    EXPECT_TRUE(convert(converter, sine) == sine);
}

using rt::ChannelLayout;
using enum rt::Speaker;

struct Mapping {
    const char* name;
    ChannelLayout from;
    ChannelLayout to;
    std::vector<std::vector<double>> gains; // a row an output
};

std::ostream& operator<<(std::ostream& out, const Mapping& mapping) {
    return out << mapping.name;
}

constexpr double kHalfPower = std::numbers::sqrt2 / 2;
const ChannelLayout kMono = ChannelLayout::usual(1);
const ChannelLayout kStereo = ChannelLayout::usual(2);
const ChannelLayout kFivePointOne = ChannelLayout::usual(6);
const ChannelLayout kFivePointOneSide{
    6, {FrontLeft, FrontRight, FrontCenter, LowFrequency, SideLeft, SideRight}};
constexpr double kThree = 1 + 2 * kHalfPower; // what a stereo side of 5.1 adds up to
constexpr double kFour = 1 + 3 * kHalfPower;  // and one of 7.1
constexpr double kA = 1 / kThree;
constexpr double kB = kHalfPower / kThree;
constexpr double kC = 1 / kFour;
constexpr double kD = kHalfPower / kFour;

const Mapping kMappings[] = {
    {"same", kStereo, kStereo, {{1, 0}, {0, 1}}},
    {"mono to stereo", kMono, kStereo, {{1}, {1}}},
    {"mono to 5.1", kMono, kFivePointOne, {{1}, {1}, {0}, {0}, {0}, {0}}},
    {"stereo to mono", kStereo, kMono, {{0.5, 0.5}}},
    {"stereo to 5.1", kStereo, kFivePointOne, {{1, 0}, {0, 1}, {0, 0}, {0, 0}, {0, 0}, {0, 0}}},
    {"3.0 to stereo",
     ChannelLayout::usual(3),
     kStereo,
     {{1 / (1 + kHalfPower), 0, kHalfPower / (1 + kHalfPower)},
      {0, 1 / (1 + kHalfPower), kHalfPower / (1 + kHalfPower)}}},
    {"5.1 to stereo", kFivePointOne, kStereo, {{kA, 0, kB, 0, kB, 0}, {0, kA, kB, 0, 0, kB}}},
    {"5.1 to mono", kFivePointOne, kMono, {{kA / 2, kA / 2, kB, 0, kB / 2, kB / 2}}},
    {"7.1 to stereo",
     ChannelLayout::usual(8),
     kStereo,
     {{kC, 0, kD, 0, kD, 0, kD, 0}, {0, kC, kD, 0, 0, kD, 0, kD}}},
    {"5.1 to 5.1 with side speakers",
     kFivePointOne,
     kFivePointOneSide,
     {{1, 0, 0, 0, 0, 0},
      {0, 1, 0, 0, 0, 0},
      {0, 0, 1, 0, 0, 0},
      {0, 0, 0, 1, 0, 0},
      {0, 0, 0, 0, 1, 0},
      {0, 0, 0, 0, 0, 1}}},
    {"7.1 to 5.1",
     ChannelLayout::usual(8),
     kFivePointOne,
     {{0.5, 0, 0, 0, 0, 0, 0, 0},
      {0, 0.5, 0, 0, 0, 0, 0, 0},
      {0, 0, 0.5, 0, 0, 0, 0, 0},
      {0, 0, 0, 0.5, 0, 0, 0, 0},
      {0, 0, 0, 0, 0.5, 0, 0.5, 0},
      {0, 0, 0, 0, 0, 0.5, 0, 0.5}}},
    {"swapped stereo", {2, {FrontRight, FrontLeft}}, kStereo, {{0, 1}, {1, 0}}},
    {"unknown channels", {3, {}}, kStereo, {{1, 0, 0}, {0, 1, 0}}},
    {"stereo to an unknown device", kStereo, {2, {}}, {{1, 0}, {0, 1}}},
};

class ChannelMapperTest : public testing::TestWithParam<Mapping> {};

TEST_P(ChannelMapperTest, MixesByTheTable) {
    const Mapping& mapping = GetParam();
    const ChannelMapper mapper(mapping.from, mapping.to);
    const int inputs = mapping.from.channels;
    const int outputs = mapping.to.channels;
    for (int i = 0; i < inputs; ++i) {
        std::vector<float> in(
            static_cast<std::size_t>(3 * inputs)); // one channel in the middle frame
        in[static_cast<std::size_t>(inputs + i)] = 1;
        std::vector<float> out(static_cast<std::size_t>(3 * outputs), 9);
        mapper.map(in.data(), out.data(), 3);
        for (int o = 0; o < outputs; ++o) {
            const auto column = static_cast<std::size_t>(o);
            const double gain = mapping.gains[column][static_cast<std::size_t>(i)];
            EXPECT_NEAR(out[static_cast<std::size_t>(outputs) + column], gain, 1e-6)
                << "from " << i << " into " << o;
            EXPECT_EQ(out[column], 0);
            EXPECT_EQ(out[static_cast<std::size_t>(2 * outputs) + column], 0);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(, ChannelMapperTest, testing::ValuesIn(kMappings));

} // namespace

} // namespace quorel
