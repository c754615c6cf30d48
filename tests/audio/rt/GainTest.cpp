#include "Stream.h"
#include "audio/rt/GainRamp.h"
#include "audio/rt/Mixer.h"
#include "support/Spectrum.h"

#include <gtest/gtest.h>

#include <cmath>

namespace quorel::rt::test {
namespace {

constexpr int kRate = 48000;

TEST(GainRamp, MovesFrameExactlyAlsoOutOfARunningRamp) {
    GainRamp ramp;
    float gains[12];
    ramp.rampTo(0.0f, 8, Shape::Linear);
    ramp.render(gains, 4);
    EXPECT_EQ(gains[0], 0.875f);
    EXPECT_EQ(ramp.value(), 0.5f);
    ramp.rampTo(1.0f, 10, Shape::RaisedCosine); // turns round half way
    ramp.render(gains, 12);
    EXPECT_NEAR(gains[0], 0.5 + 0.5 * (0.5 - 0.5 * std::cos(M_PI / 10)), 1e-7);
    EXPECT_NEAR(gains[4], 0.75, 1e-7);
    EXPECT_LT(gains[8], 1.0f);
    EXPECT_EQ(gains[9], 1.0f);
    EXPECT_EQ(gains[11], 1.0f);
    EXPECT_TRUE(ramp.atTarget());
}

TEST(Mixer, FadesWithoutSplatter) {
    struct {
        const char* name;
        double limitDb;
        void (*act)(Mixer&);
    } const rows[] = {
        {"raised-cosine change", -88, [](Mixer& m) { m.glideVolume(0.0f); }},
        {"raised-cosine balance", -88, [](Mixer& m) { m.setPan(1.0f); }},
        {"linear fade of 400 ms", -90, [](Mixer& m) { m.rampVolume(0.1f, 19200, Shape::Linear); }},
    };
    for (const auto& row : rows) {
        Mixer mixer;
        mixer.prepare(format(kRate));
        Stream stream = Stream::ofMono(quorel::test::sine(0.5, 997, kRate, 1 << 16));
        run(mixer, stream, {{20000, [&] { row.act(mixer); }}});
        EXPECT_LE(quorel::test::splatterDb(stream.left(), kRate, 997, 0.5, 300), row.limitDb)
            << row.name;
    }
}

TEST(Mixer, BalancesAndScalesExactly) {
    struct {
        float volume, pan, left, right;
    } const rows[] = {{1, 0, 1, 1},
                      {0.5f, 0, 0.5f, 0.5f},
                      {1, -1, 1, 0},
                      {1, 0.25f, 0.75f, 1},
                      {0.5f, -0.5f, 0.5f, 0.25f},
                      {0, 0, 0, 0},
                      {1, 7, 0, 1},
                      {-1, 0, 0, 0}};
    const Stream input = Stream::noise(2, 1000, 0.3f);
    for (const auto& row : rows) {
        Mixer mixer;
        mixer.setVolume(row.volume);
        mixer.setPan(row.pan);
        mixer.prepare(format(kRate, 4));
        Stream output = input;
        run(mixer, output);
        for (std::size_t p = 0; p < 2; ++p)
            for (std::size_t i = 0; i < 2000; i += 2) {
                ASSERT_EQ(output.pairs[p][i], input.pairs[p][i] * row.left) << row.pan;
                ASSERT_EQ(output.pairs[p][i + 1], input.pairs[p][i + 1] * row.right) << row.pan;
            }
    }
}

TEST(Mixer, AddsNoDistortion) {
    Mixer mixer;
    mixer.setVolume(0.7f);
    mixer.prepare(format(kRate));
    Stream stream = Stream::ofMono(quorel::test::sine(0.89, 997, kRate, 48000));
    run(mixer, stream);
    EXPECT_LE(quorel::test::thdPlusNoiseDb(stream.left(), kRate, 997), -135);
}

} // namespace
} // namespace quorel::rt::test
