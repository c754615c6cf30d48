#include "Stream.h"
#include "audio/rt/GainRamp.h"
#include "audio/rt/Mixer.h"
#include "support/Spectrum.h"

#include <gtest/gtest.h>

#include <cmath>

namespace quorel::rt::test {
namespace {

constexpr int kRate = 48000;

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

} // namespace
} // namespace quorel::rt::test
