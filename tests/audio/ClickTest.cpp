// No transport action may click: what a steady tone leaves far from its own frequency.
#include "EngineFixture.h"
#include "audio/rt/PeakLimiter.h"
#include "support/Spectrum.h"

#include <limits>

namespace quorel::test {
namespace {

class Click : public EngineTest {};
INSTANTIATE_TEST_SUITE_P(OutputLatency, Click, testing::Values(0));

TEST_P(Click, noActionSplatters) {
    using Act = std::function<void(AudioEngine&)>;
    using E = AudioEngine;
    const Act nothing = [](E&) {};
    const auto pause = [](int ms) -> Act { return [ms](E& e) { e.pause(ms); }; };
    const auto play = [](int ms) -> Act { return [ms](E& e) { e.play(ms); }; };
    const auto fadeIn = [](E& e) { e.pause(0), e.play(900); };
    const auto equalise = [](E& e) { e.setEQGain(5, -9), e.setEqEnabled(true); };
    const auto compensate = [](E& e) { e.setLoudness(true, 0.3, LoudnessStrength::Strong); };
    const std::tuple<const char*, Act, Act> cases[] = {
        {"pause", nothing, pause(0)},
        {"pause fade", nothing, pause(250)},
        {"resume", pause(0), [](E& e) { e.resume(0); }},
        {"resume fade", pause(0), [](E& e) { e.resume(250); }},
        {"stop", nothing, [](E& e) { e.stop(0); }},
        {"seek", nothing, [](E& e) { e.seek(20.1234); }},
        {"play while playing", nothing, play(0)},
        {"play in a pause fade", pause(900), play(0)},
        {"pause in a fade-in", fadeIn, pause(0)},
        {"volume", nothing, [](E& e) { e.setVolume(0.2); }},
        {"mute", nothing, [](E& e) { e.setVolume(0); }},
        {"balance", nothing, [](E& e) { e.setPan(1); }},
        {"normalisation", nothing, [](E& e) { e.setNormGain(0.5, false); }},
        {"equaliser on", [](E& e) { e.setEQGain(5, -9); }, [](E& e) { e.setEqEnabled(true); }},
        {"a band's notch", [](E& e) { e.setEqEnabled(true); }, [](E& e) { e.setEQGain(5, 1); }},
        {"equaliser off", equalise, [](E& e) { e.setEqEnabled(false); }},
        {"tone compensation", nothing, compensate},
    };
    for (const auto& [what, prepare, act] : cases) {
        OfflineRenderer fresh({kRate, rt::ChannelLayout::usual(2)});
        Samples rendered;
        ASSERT_FALSE(fresh.engine().load(track(stereo(tone(30 * kRate, 997, kRate, 0.4))), 0));
        fresh.render(kRate, rendered);
        prepare(fresh.engine());
        fresh.render(kRate / 4, rendered);
        rendered.clear();
        fresh.render(32768 - 240, rendered);
        act(fresh.engine());
        fresh.render(32768 + 240, rendered);
        for (const std::size_t channel : {0U, 1U}) {
            std::vector<float> samples;
            for (std::size_t i = channel; i < rendered.size(); i += 2)
                samples.push_back(rendered[i]);
            EXPECT_LE(splatterDb(samples, kRate, 997, 0.4, 300), -88) << what;
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
        if (i == 0)
            first = out;
    }
    EXPECT_EQ(out, first);
}

// Through every unit, each of them with gain.
TEST_P(Click, badSamplesAreGoneWithinASecond) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    const auto rendered = [this](Samples samples, int rate) {
        OfflineRenderer fresh({rate, rt::ChannelLayout::usual(2)});
        AudioEngine& player = fresh.engine();
        for (int band = 0; band < 10; ++band)
            player.setEQGain(band, band % 2 ? 12 : -12);
        player.setEqEnabled(true);
        player.setCompressor(true, CompressorPreset::Radio);
        player.setLoudness(true, 0, LoudnessStrength::Strong);
        EXPECT_FALSE(player.load(track(stereo(std::move(samples), rate)), 0));
        out.clear();
        fresh.render(3 * rate, out);
        return out;
    };
    for (const int rate : {8000, 48000, 192000}) {
        const auto second = static_cast<std::size_t>(rate);
        const Samples good = music(3 * rate);
        const Samples expected = rendered(good, rate);
        for (const float bad : {std::nanf(""), kInfinity, -kInfinity, 3e38F, -1e4F, 1e-42F}) {
            Samples damaged = good;
            std::fill_n(damaged.begin() + rate, 200, bad);
            const Samples heard = rendered(damaged, rate);
            for (const float x : heard)
                ASSERT_LE(std::abs(x), rt::PeakLimiter::kCeiling) << bad;
            for (std::size_t i = 2 * 2 * second; i < heard.size(); ++i)
                ASSERT_NEAR(heard[i], expected[i], 0.03) << rate << ' ' << bad;
        }
    }
}

} // namespace
} // namespace quorel::test
