#include "Stream.h"
#include "audio/rt/DynamicsProcessor.h"
#include "audio/rt/FastMath.h"
#include "support/Spectrum.h"

#include <gtest/gtest.h>

#include <cmath>

namespace quorel::rt::test {
namespace {

constexpr DynamicsParameters kPresets[] = {
    {-18, 20, 0.03f, 0.3f, 3.15f},    {-20, 16, 0.025f, 0.25f, 4.2f},
    {-22, 10, 0.015f, 0.18f, 5.775f}, {-16, 13.333f, 0.045f, 0.12f, 3.7333f},
    {-26, 5, 0.005f, 0.1f, 7.9625f},
};

double amplitude(double db) {
    return std::pow(10.0, db / 20);
}
double levelDb(float x) {
    return 20 * std::log10(static_cast<double>(std::abs(x)));
}

/// Both channels at constant levels, the right one 20 dB below the left one.
Stream steps(int rate, std::initializer_list<std::pair<double, double>> levelsAndSeconds) {
    std::vector<float> left;
    for (const auto& [db, seconds] : levelsAndSeconds)
        left.insert(left.end(), static_cast<std::size_t>(seconds * rate),
                    static_cast<float>(amplitude(db)));
    Stream stream = Stream::ofMono(left);
    for (std::size_t i = 1; i < stream.pairs[0].size(); i += 2)
        stream.pairs[0][i] *= 0.1f;
    return stream;
}

void prepare(DynamicsProcessor& unit, const DynamicsParameters& parameters, int rate) {
    unit.setParameters(parameters);
    unit.setBypass(false);
    unit.prepare(format(rate));
}

TEST(FastMath, IsAsExactAsItSays) {
    for (float x = -100; x < 100; x += 0.037f)
        EXPECT_NEAR(fastExp2(x) / std::exp2(x), 1.0f, 4e-7f) << x;
    for (float x = 1e-6f; x < 1e6f; x *= 1.013f)
        EXPECT_NEAR(fastLog2(x), std::log2(x), 4e-6f) << x;
    EXPECT_EQ(fastExp2(0), 1.0f);
    EXPECT_EQ(fastLog2(1), 0.0f);
}

TEST(DynamicsProcessor, FollowsItsStaticCurveAndKeepsTheImage) {
    for (const auto& p : kPresets)
        for (const double level : {-60.0, -24.0, -12.0, -6.0, -1.0, 6.0, 30.0}) {
            DynamicsProcessor unit;
            prepare(unit, p, 48000);
            Stream stream = steps(48000, {{level, 1.0}});
            run(unit, stream);
            const double threshold = static_cast<double>(p.thresholdDb);
            const double room = static_cast<double>(p.headRoomDb);
            const double over = std::max(0.0, level - threshold);
            const double expected = std::min(level, threshold) +
                                    room * (1 - std::exp(-over / room)) +
                                    static_cast<double>(p.masterGainDb);
            const auto& out = stream.pairs[0];
            EXPECT_NEAR(levelDb(out[out.size() - 2]), expected, 0.02)
                << p.thresholdDb << ' ' << level;
            EXPECT_NEAR(levelDb(out[out.size() - 1]), expected - 20, 0.02);
        }
    DynamicsProcessor expander;
    prepare(expander, {.thresholdDb = 0, .expansionRatio = 2, .expansionThresholdDb = -50}, 48000);
    Stream stream = steps(48000, {{-60, 1.0}});
    run(expander, stream);
    EXPECT_NEAR(levelDb(stream.pairs[0][90000]), -70, 0.02);
}

/// The time, after frame `from`, to 63 % of the way between two gains in dB.
double time63(const Stream& in, const Stream& out, std::size_t from, std::size_t to, int rate) {
    const auto gain = [&](std::size_t i) {
        return levelDb(out.pairs[0][2 * i] / in.pairs[0][2 * i]);
    };
    const double start = gain(from - 1);
    const double end = gain(to - 1);
    std::size_t i = from;
    while (std::abs(gain(i) - start) < (1 - std::exp(-1.0)) * std::abs(end - start))
        ++i;
    return static_cast<double>(i - from) / rate;
}

TEST(DynamicsProcessor, AttacksAndReleasesInItsTimes) {
    for (const int rate : {44100, 384000})
        for (const auto& p : kPresets) {
            DynamicsProcessor unit;
            prepare(unit, p, rate);
            const Stream in = steps(rate, {{-50, 0.2}, {-3, 0.5}, {-50, 1.5}});
            Stream out = in;
            run(unit, out);
            const auto at = [&](double seconds) {
                return static_cast<std::size_t>(seconds * rate);
            };
            const auto attack = static_cast<double>(p.attackSeconds);
            const auto release = static_cast<double>(p.releaseSeconds);
            EXPECT_NEAR(time63(in, out, at(0.2), at(0.7), rate) / attack, 1, 0.02) << attack;
            // The attack's average runs behind the release, and delays it by about its own time.
            EXPECT_NEAR(time63(in, out, at(0.7), at(2.2), rate), release + attack, 0.15 * release);
        }
}

TEST(DynamicsProcessor, SwitchesOutTransparentlyAndWithoutAClick) {
    constexpr int kFrames = 1 << 16;
    constexpr int kSwitched = kFrames / 2 - 360;
    DynamicsProcessor unit;
    prepare(unit, kPresets[2], 48000);
    const Stream in = Stream::ofMono(quorel::test::sine(0.2, 997, 48000, kFrames));
    Stream out = in;
    run(unit, out, {{kSwitched, [&] { unit.setBypass(true); }}});
    EXPECT_TRUE(unit.bypassed());
    for (std::size_t i = 2 * (kSwitched + 720); i < 2 * kFrames; ++i)
        ASSERT_EQ(out.pairs[0][i], in.pairs[0][i]);
    EXPECT_LE(quorel::test::splatterDb(out.left(), 48000, 997, 0.2, 300), -85);
}

} // namespace
} // namespace quorel::rt::test
