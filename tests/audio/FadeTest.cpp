#include "EngineFixture.h"

namespace quorel::test {
namespace {

class Fade : public EngineTest {
  protected:
    /// A constant signal, so that what is rendered is the gain itself.
    std::shared_ptr<AudioFile> constant(double seconds) {
        return stereo(Samples(static_cast<std::size_t>(2 * seconds * kRate), 0.5F));
    }
    float gain(int64_t frame) const { return left(frame) / atRest(0.5F); }
    /// Gain of the sample rendered last.
    float gainNow() const { return out.at(out.size() - 2) / atRest(0.5F); }
};
INSTANTIATE_TEST_SUITE_P(OutputLatency, Fade, testing::Values(0, 9600));

TEST_P(Fade, inIsLinearToTheFrameAndStepsThePublishedLevel) {
    // Whole steps of 20 ms, at least one.
    const std::pair<int, int64_t> cases[] = {{0, 0}, {1, 960}, {19, 960}, {20, 960}, {250, 11520}};
    for (const auto& [ms, frames] : cases) {
        out.clear();
        ASSERT_TRUE(load(track(constant(2)), ms));
        EXPECT_TRUE(engine.isPlaying());
        EXPECT_EQ(engine.fadeLevel(), ms == 0 ? 1.0F : 0.0F);
        render(1.0);
        const int64_t start = -latencyOfChain; // the fade is behind the chain
        for (const int64_t frame : {int64_t{0}, frames / 3, frames - latencyOfChain - 1, frames}) {
            const auto reached = static_cast<double>(frame - start + 1);
            const double want =
                frames == 0 ? 1.0 : std::min(1.0, reached / static_cast<double>(frames));
            if (frame >= 0) {
                EXPECT_NEAR(gain(frame), want, 2e-4) << ms << " ms, frame " << frame;
            }
        }
        EXPECT_EQ(engine.fadeLevel(), 1.0F) << ms;
        engine.stop(0);
        render(1.0);
    }
}

TEST_P(Fade, pauseTakesExactlyTheFramesOfItsFade) {
    ASSERT_TRUE(load(track(stereo(ramp(480000)))));
    render(0.5);
    engine.pause(300);
    render(1.0);
    EXPECT_FALSE(engine.isPlaying());
    const int64_t resumed = offline.position();
    engine.resume(0);
    EXPECT_EQ(engine.fadeLevel(), 1.0F);
    render(0.5);
    // 0.5 s and the 0.3 s of the fade had been taken; 20 ms soften the start inside the music.
    EXPECT_EQ(wrongFrames(resumed + 960, 10000, 38400 + 960), 0);
}

TEST_P(Fade, goesOnFromTheLevelReached) {
    using E = AudioEngine;
    const auto wait = [](E&) {};
    // Seconds after it, then the published level, which steps every 20 ms, and that of the sound.
    const std::tuple<const char*, void (*)(E&), double, double, double, bool> steps[] = {
        {"half way in", wait, 0.2, 0.5, 0.5, true},
        {"a pause from there", [](E& e) { e.pause(200); }, 0.1, 0.25, 0.25, true},
        {"its end", wait, 0.1, 0, 0, false},
        {"a pause of what is paused", [](E& e) { e.pause(500); }, 0.1, 0, 0, false},
        {"at once", [](E& e) { e.resume(0); }, 0.1, 1, 1, true},
        {"half way out", [](E& e) { e.pause(400); }, 0.2, 0.5, 0.5, true},
        {"turned round", [](E& e) { e.resume(200); }, 0.01, 0.5, 0.525, true},
        {"its end", wait, 1, 1, 1, true},
        {"half way out again", [](E& e) { e.pause(400); }, 0.2, 0.5, 0.5, true},
        {"turned round by play", [](E& e) { e.play(200); }, 0.01, 0.5, 0.525, true},
        {"its end", wait, 1, 1, 1, true},
        {"a pause without a fade", [](E& e) { e.pause(0); }, 1, 1, 0, false},
        {"from nothing", [](E& e) { e.play(1000); }, 0.3, 0.3, 0.3, true},
        {"a pause within", [](E& e) { e.pause(0); }, 1, 0.3, 0, false},
        {"at once again", [](E& e) { e.play(0); }, 1, 1, 1, true},
    };
    ASSERT_TRUE(load(track(constant(10)), 400));
    for (const auto& [what, act, seconds, level, sound, playing] : steps) {
        act(engine);
        render(seconds);
        EXPECT_NEAR(engine.fadeLevel(), level, 1e-3) << what;
        EXPECT_NEAR(gainNow(), sound, 1e-2) << what;
        EXPECT_EQ(engine.isPlaying(), playing) << what;
    }
}

TEST_P(Fade, stopFadesOnlyWhatIsHeard) {
    ASSERT_TRUE(load(track(constant(10))));
    render(0.5);
    engine.stop(500);
    EXPECT_TRUE(engine.isLoaded());
    render(0.5);
    EXPECT_FALSE(engine.isLoaded());
    ASSERT_TRUE(load(track(constant(10))));
    render(0.5);
    engine.stop(400);
    render(0.1);
    ASSERT_TRUE(load(track(constant(10))));
    render(1.0);
    EXPECT_NEAR(gainNow(), 1.0F, 1e-5F) << "a load cancels it";
    engine.pause(0);
    engine.stop(500);
    EXPECT_FALSE(engine.isLoaded()) << "paused: nothing to fade";
}

TEST_P(Fade, theEndOfTheTrackWaitsForAPauseAndIsForgottenByAStop) {
    ASSERT_TRUE(load(track(constant(1))));
    render(0.9);
    engine.pause(400);
    render(2.0);
    EXPECT_TRUE(ended.empty());
    engine.resume(0);
    render(1.0);
    EXPECT_EQ(ended.size(), 1U);

    ASSERT_TRUE(load(track(constant(1))));
    ASSERT_TRUE(engine.preloadNext(track(constant(1))));
    render(0.9);
    engine.stop(400);
    render(2.0);
    EXPECT_EQ(ended.size(), 1U);
    EXPECT_TRUE(promoted.empty());
}

TEST_P(Fade, normalisationRampsAndEndsBypassed) {
    TrackToPlay loud = track(constant(20));
    loud.normGain = 0.5;
    ASSERT_TRUE(load(loud));
    EXPECT_NEAR(engine.normUnitDb(), -6.0206, 1e-3);
    EXPECT_FALSE(engine.normBypassed());
    renderFrames(latencyOfChain + 10);
    EXPECT_NEAR(gain(0), 0.5, 1e-4) << "from the first frame";
    for (const auto& [to, db, bypassed] : {std::tuple{0.25, -12.0412F, false},
                                           {1.0, 0.0F, true},
                                           {100.0, 24.0F, false},
                                           {1e-5, -96.0F, false},
                                           {0.0, 0.0F, true},
                                           {-1.0, 0.0F, true}}) {
        const bool wasBypassed = engine.normBypassed();
        engine.setNormGain(to, false);
        render(0.1);
        EXPECT_EQ(engine.normBypassed(), wasBypassed && bypassed) << "under way to " << to;
        render(0.3);
        EXPECT_NEAR(engine.normUnitDb(), db, 1e-3F) << to;
        EXPECT_EQ(engine.normBypassed(), bypassed) << to;
    }
    EXPECT_NEAR(gainNow(), 1.0, 1e-5);
}

TEST_P(Fade, equaliserRampsInEightStepsAndTheLaterRequestWins) {
    ASSERT_TRUE(load(track(constant(20))));
    render(0.1);
    engine.setEQGain(5, 8);
    engine.setEQGain(10, 8);
    EXPECT_EQ(engine.eqBandGains()[5], 0.0F) << "off: only stored";
    engine.setEqEnabled(true);
    EXPECT_FALSE(engine.eqBypassed());
    render(0.060);
    EXPECT_NEAR(engine.eqBandGains()[5], 4.0F, 1e-4F);
    engine.setEqEnabled(false);
    render(0.030);
    EXPECT_NEAR(engine.eqBandGains()[5], 3.0F, 1e-4F);
    engine.setEqEnabled(true);
    render(1.0);
    EXPECT_EQ(engine.eqBandGains()[5], 8.0F);
    EXPECT_FALSE(engine.eqBypassed()) << "the ramp-down that was cut short must not bypass";
    engine.setEqEnabled(false);
    render(0.121);
    EXPECT_TRUE(engine.eqBypassed());
    render(0.1);
    EXPECT_NEAR(gainNow(), 1.0, 1e-5);
}

TEST_P(Fade, toneCompensationFollowsTheVolume) {
    ASSERT_TRUE(load(track(constant(20))));
    engine.setLoudness(false, 0.5, LoudnessStrength::Strong);
    EXPECT_TRUE(engine.loudBypassed());
    using enum LoudnessStrength;
    const std::tuple<double, LoudnessStrength, float, float, bool> cases[] = {
        {0.5, Medium, 4, 1.75F, false},   {0, Strong, 12, 5, false},
        {1, Gentle, 0, 0, true},          {0.9999, Strong, 0.0012F, 0.0005F, true},
        {1.5, Medium, -4, -1.75F, false},
    };
    for (const auto& [volume, strength, low, high, bypassed] : cases) {
        engine.setLoudness(true, volume, strength);
        render(0.3);
        EXPECT_NEAR(engine.loudBandGains()[0], low, 1e-4F) << volume;
        EXPECT_NEAR(engine.loudBandGains()[1], high, 1e-4F) << volume;
        EXPECT_EQ(engine.loudBypassed(), bypassed) << volume;
    }
    engine.setLoudness(false, 0.5, Medium);
    render(0.3);
    EXPECT_TRUE(engine.loudBypassed());
}

} // namespace
} // namespace quorel::test
