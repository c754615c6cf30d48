// No transport action may click: what a steady tone leaves far from its own frequency.
#include "EngineFixture.h"
#include "support/Spectrum.h"

#include <array>

namespace quorel::test {
namespace {

class Click : public EngineTest {};
INSTANTIATE_TEST_SUITE_P(OutputLatency, Click, testing::Values(0));

TEST_P(Click, noActionSplatters) {
    struct Case {
        const char* what;
        void (*prepare)(AudioEngine&);
        void (*act)(AudioEngine&);
    };
    const auto nothing = [](AudioEngine&) {};
    const std::array cases{
        Case{"pause", nothing, [](AudioEngine& e) { e.pause(0); }},
        Case{"pause fade", nothing, [](AudioEngine& e) { e.pause(250); }},
        Case{"resume", [](AudioEngine& e) { e.pause(0); }, [](AudioEngine& e) { e.resume(0); }},
        Case{"resume fade", [](AudioEngine& e) { e.pause(0); },
             [](AudioEngine& e) { e.resume(250); }},
        Case{"stop", nothing, [](AudioEngine& e) { e.stop(0); }},
        Case{"seek", nothing, [](AudioEngine& e) { e.seek(20.1234); }},
        Case{"play while playing", nothing, [](AudioEngine& e) { e.play(0); }},
        Case{"play in a pause fade", [](AudioEngine& e) { e.pause(900); },
             [](AudioEngine& e) { e.play(0); }},
        Case{"pause in a fade-in",
             [](AudioEngine& e) {
                 e.pause(0);
                 e.play(900);
             },
             [](AudioEngine& e) { e.pause(0); }},
        Case{"volume", nothing, [](AudioEngine& e) { e.setVolume(0.2); }},
        Case{"mute", nothing, [](AudioEngine& e) { e.setVolume(0); }},
        Case{"balance", nothing, [](AudioEngine& e) { e.setPan(1); }},
        Case{"normalisation", nothing, [](AudioEngine& e) { e.setNormGain(0.5, false); }},
        Case{"equaliser on", [](AudioEngine& e) { e.setEQGain(5, -9); },
             [](AudioEngine& e) { e.setEqEnabled(true); }},
        Case{"a notch of an equaliser band", [](AudioEngine& e) { e.setEqEnabled(true); },
             [](AudioEngine& e) { e.setEQGain(5, 1); }},
        Case{"tone compensation", nothing,
             [](AudioEngine& e) { e.setLoudness(true, 0.3, LoudnessStrength::Strong); }},
    };
    for (const Case& one : cases) {
        OfflineRenderer fresh({kRate, rt::ChannelLayout::usual(2)});
        Samples rendered;
        ASSERT_FALSE(fresh.engine().load(track(stereo(tone(30 * kRate, 997, kRate, 0.4))), 0));
        fresh.render(kRate, rendered);
        one.prepare(fresh.engine());
        fresh.render(kRate / 4, rendered);
        rendered.clear();
        fresh.render(32768 - 240, rendered);
        one.act(fresh.engine());
        fresh.render(32768 + 240, rendered);
        for (const std::size_t channel : {0U, 1U}) {
            std::vector<float> samples;
            for (std::size_t i = channel; i < rendered.size(); i += 2) {
                samples.push_back(rendered[i]);
            }
            EXPECT_LE(splatterDb(samples, kRate, 997, 0.4, 300), -88) << one.what;
        }
    }
}

TEST_P(Click, nothingOfOneTrackIsHeardInTheNext) {
    engine.setEqEnabled(true);
    engine.setEQGain(5, 12); // into the limiter
    engine.setCompressor(true, CompressorPreset::Radio);
    Samples first;
    for (int i = 0; i < 2; ++i) {
        out.clear();
        ASSERT_TRUE(load(track(stereo(tone(30 * kRate, 997, kRate, 0.9)))));
        render(1.5);
        engine.stop(0);
        render(0.5);
        if (i == 0) {
            first = out;
        }
    }
    EXPECT_EQ(out, first);
}

} // namespace
} // namespace quorel::test
