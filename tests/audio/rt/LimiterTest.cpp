#include "Stream.h"
#include "audio/rt/EqUnit.h"
#include "audio/rt/PeakLimiter.h"
#include "audio/rt/Sanitise.h"
#include "support/Spectrum.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace quorel::rt::test {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

TEST(PeakLimiter, NeverExceedsTheCeilingAndComesBackToExactlyOne) {
    for (const int rate : {8000, 11025, 44100, 48000, 96000, 384000})
        for (const int channels : {1, 2, 6}) {
            PeakLimiter limiter;
            limiter.setPreGain(2.0f);
            limiter.prepare(format(rate, channels));
            limiter.setPreGain(0.0f);
            const auto busy = static_cast<std::size_t>(rate / 4);
            const Stream quiet = Stream::noise((channels + 1) / 2, rate / 4 + 2 * rate, 0.1f, 7);
            Stream stream = quiet;
            std::mt19937 random(static_cast<unsigned>(rate + channels));
            constexpr float kPeaks[] = {1e4f, -1e4f, 3e38f,     1.0f,       -1.0f, 1.001f,
                                        5.0f, kNan,  kInfinity, -kInfinity, 40.0f, -2.0f};
            for (auto& pair : stream.pairs)
                for (std::size_t i = 0; i < busy; ++i)
                    if (const auto draw = random(); draw % 29 == 0)
                        pair[2 * i + draw / 29 % 2] = kPeaks[draw / 64 % std::size(kPeaks)];
            run(limiter, stream);
            for (const auto& pair : stream.pairs)
                for (const float x : pair)
                    ASSERT_LE(std::abs(x), PeakLimiter::kCeiling) << rate << ' ' << channels;
            EXPECT_EQ(limiter.limitingGain(), 1.0f) << rate;
            // In the last second it is a mere delay again.
            const auto latency = 2 * static_cast<std::size_t>(limiter.latencyFrames());
            for (std::size_t p = 0; p < stream.pairs.size(); ++p)
                for (std::size_t i = stream.pairs[p].size() - 2 * static_cast<std::size_t>(rate);
                     i < stream.pairs[p].size(); ++i)
                    ASSERT_EQ(stream.pairs[p][i], quiet.pairs[p][i - latency]) << rate << ' ' << i;
        }
}

TEST(PeakLimiter, IsDownBeforeAPeakArrivesWithoutClippingIt) {
    PeakLimiter limiter;
    limiter.prepare(format(48000));
    std::vector<float> in(6000, 0.1f);
    std::fill(in.begin() + 2000, in.begin() + 2010, 3.0f);
    Stream stream = Stream::ofMono(in);
    run(limiter, stream);
    const auto out = stream.left(72);
    float before = 1;
    for (std::size_t i = 0; i < out.size(); ++i) {
        const float gain = out[i] / in[i];
        ASSERT_NEAR(gain, before, 0.02f) << i; // its way down takes 1.5 ms
        before = gain;
    }
    EXPECT_NEAR(out[2005], PeakLimiter::kCeiling, 1e-5f);
}

TEST(PeakLimiter, TurnsASineDownCleanly) {
    PeakLimiter limiter;
    limiter.setPreGain(6.0f);
    limiter.prepare(format(48000));
    Stream stream = Stream::ofMono(quorel::test::sine(0.89, 997, 48000, 144000));
    run(limiter, stream);
    EXPECT_LE(quorel::test::thdPlusNoiseDb(stream.left(96000), 48000, 997), -100);
}

TEST(EqUnit, SurvivesWhatNoFilterShouldBeFed) {
    EqUnit eq(10);
    for (int i = 0; i < 10; ++i)
        eq.setBand(i, {.frequencyHz = 1000, .gainDb = 500});
    eq.setBypass(false);
    eq.prepare(format(48000));
    eq.rampGlobalGain(kNan, 10, 96);
    for (const float bad : {kNan, kInfinity, 3e38f, 64.0f}) {
        Stream stream = Stream::noise(1, 4096, 0.1f);
        std::fill_n(stream.pairs[0].begin(), 400, bad);
        run(eq, stream);
        for (const float x : stream.pairs[0])
            ASSERT_TRUE(std::isfinite(x)) << bad;
        EXPECT_NE(stream.pairs[0].back(), 0.0f) << bad;
    }
    EXPECT_EQ(eq.globalGain(), 0);
    EXPECT_EQ(eq.gain(9), kMaxBandGainDb);
}

TEST(Sanitise, KeepsGoodSamplesAndReplacesBadOnes) {
    constexpr float kRows[][2] = {{0.5f, 0.5f}, {-64, -64}, {1e4f, 64},     {-1e4f, -64},
                                  {kNan, 0},    {-kNan, 0}, {kInfinity, 0}, {-kInfinity, 0}};
    for (const auto& [in, expected] : kRows) {
        std::vector<float> samples(2 * 21, in);
        Block block{{samples.data()}, 1, 21};
        sanitise(block);
        for (const float x : samples)
            EXPECT_EQ(x, expected);
    }
}

} // namespace
} // namespace quorel::rt::test
