#include "EngineFixture.h"

namespace quorel::test {
namespace {

constexpr double kNever = std::numeric_limits<double>::infinity();
constexpr int64_t kEdge = 960; // 20 ms, the softening at places inside the music

class Transport : public EngineTest {};
INSTANTIATE_TEST_SUITE_P(OutputLatency, Transport, testing::Values(0, 9600));

TEST_P(Transport, playsEveryFrameAndEndsWhenTheLastIsHeard) {
    ASSERT_TRUE(load(track(stereo(ramp(100001)))));
    EXPECT_TRUE(engine.isPlaying());
    render(3.0);
    EXPECT_EQ(wrongFrames(0, 100001, 0), 0);
    EXPECT_TRUE(isSilent(100001, 1000));
    EXPECT_EQ(ended, std::vector<int64_t>{100001});
    EXPECT_FALSE(engine.isPlaying());
    EXPECT_EQ(engine.currentTime(), engine.duration());
}

TEST_P(Transport, playsOnlyBetweenTheTrimPoints) {
    ASSERT_TRUE(load(track(stereo(ramp(96000)), 0.5, 1.25)));
    EXPECT_EQ(engine.currentTime(), 0.5);
    EXPECT_EQ(engine.duration(), 1.25);
    render(1.5);
    EXPECT_EQ(wrongFrames(0, 36000, 24000), 0);
    EXPECT_EQ(ended, std::vector<int64_t>{36000});
}

TEST_P(Transport, refusesWhatCannotBePlayed) {
    const std::tuple<const char*, double, std::optional<double>, bool> cases[] = {
        {"start at end", 0.5, 0.5, false},          {"start past end", 0.75, 0.5, false},
        {"start past the file", 3, {}, false},      {"end before 0", 0, -1.0, false},
        {"start without bound", kNever, {}, false}, {"huge start", 1e300, {}, false},
        {"end without bound", 0, kNever, false},    {"not a number", 0, std::nan(""), false},
        {"negative start", -5, {}, true},           {"end past the file", 0, 9.0, true},
    };
    for (const auto& [what, start, end, playable] : cases) {
        const auto error = engine.load(track(stereo(ramp(48000)), start, end), 0);
        EXPECT_EQ(!error, playable) << what;
        EXPECT_EQ(engine.isPlaying(), playable) << what;
        EXPECT_TRUE(!error || (error->code == 1 && error->domain == QStringLiteral("Quorel")));
    }
    EXPECT_EQ(engine.load({}, 0)->code, 2);
}

TEST_P(Transport, positionRunsOnAcrossAPromotion) {
    ASSERT_TRUE(load(track(stereo(ramp(72000)))));
    ASSERT_TRUE(engine.preloadNext(track(stereo(ramp(96000)), 0.25)));
    double before = -1;
    engine.onGaplessPromotion = [&](QUuid) { before = engine.currentTime(); };
    render(1.5 + (GetParam() + engine.latencyFrames()) / double{kRate} + 0.5);
    EXPECT_NEAR(before, 0.25, 1e-4);
    EXPECT_NEAR(engine.currentTime(), 0.75, 0.21); // at a tick, within the last 0.2 s
    EXPECT_EQ(engine.duration(), 2.0);
}

TEST_P(Transport, queuesOnlyWhatCanJoin) {
    EXPECT_FALSE(engine.preloadNext(track(stereo(ramp(9000))))) << "nothing is current";
    ASSERT_TRUE(load(track(stereo(ramp(96000)))));
    EXPECT_FALSE(engine.preloadNext(track(stereo(ramp(9000), 44100)))) << "other rate";
    EXPECT_FALSE(engine.preloadNext(track(std::make_shared<MadeFile>(kRate, 1, Samples(9000)))))
        << "other channel count";
    EXPECT_FALSE(engine.preloadNext(track(stereo(ramp(9000)), 0.1, 0.1))) << "empty range";
    EXPECT_FALSE(engine.preloadNext({})) << "no file";
    EXPECT_TRUE(engine.preloadNext(track(stereo(ramp(9000)))));
    EXPECT_FALSE(engine.preloadNext(track(stereo(ramp(9000))))) << "one is queued";
}

TEST_P(Transport, lateQueueingJoinsAsLongAsThereIsTime) {
    ASSERT_TRUE(load(track(stereo(ramp(96000)))));
    render(1.65);
    EXPECT_TRUE(engine.preloadNext(track(stereo(ramp(48000, 96000)))));
    render(2.0);
    EXPECT_EQ(wrongFrames(0, 144000, 0), 0);

    ASSERT_TRUE(load(track(stereo(ramp(96000)))));
    render(1.8);
    EXPECT_FALSE(engine.preloadNext(track(stereo(ramp(48000)))));
}

TEST_P(Transport, asksForTheNextTrackOnlyNearTheEnd) {
    ASSERT_TRUE(load(track(stereo(Samples(2 * 20 * kRate)))));
    render(7.9);
    EXPECT_EQ(preloadsAsked, 0);
    render(0.9);
    EXPECT_GE(preloadsAsked, 2);
    ASSERT_TRUE(engine.preloadNext(track(stereo(ramp(48000)))));
    const int asked = preloadsAsked;
    render(1.0);
    EXPECT_EQ(preloadsAsked, asked);
    engine.discardQueued();
    engine.gaplessEnabled = false;
    render(1.0);
    EXPECT_EQ(preloadsAsked, asked);
}

TEST_P(Transport, seekGoesOnAtTheFrameAskedFor) {
    ASSERT_TRUE(load(track(stereo(ramp(480000)))));
    render(1.0);
    engine.seek(5.0);
    EXPECT_EQ(engine.currentTime(), 5.0);
    const int64_t start = offline.position(); // the old place fades out under the new one
    render(1.0);
    EXPECT_EQ(wrongFrames(0, 48000, 0), 0);
    EXPECT_EQ(wrongFrames(start + kEdge, 20000, 240000 + kEdge), 0);
    EXPECT_NEAR(engine.currentTime(), 6.0 - GetParam() / double{kRate}, 0.21);
}

TEST_P(Transport, seekStaysInsideTheTrack) {
    ASSERT_TRUE(load(track(stereo(ramp(96000)), 0.5, 1.5)));
    engine.seek(99);
    EXPECT_DOUBLE_EQ(engine.currentTime(), 1.45);
    engine.seek(0);
    EXPECT_DOUBLE_EQ(engine.currentTime(), 0.5);
    engine.seek(std::nan(""));
    render(0.1);
    EXPECT_TRUE(engine.isPlaying());
}

TEST_P(Transport, seekWhileQueuedThrowsTheQueuedTrackAway) {
    ASSERT_TRUE(load(track(stereo(ramp(96000)))));
    ASSERT_TRUE(engine.preloadNext(track(stereo(ramp(48000, 500000)))));
    render(1.9);
    engine.seek(1.0);
    EXPECT_EQ(discarded, 1);
    EXPECT_FALSE(engine.hasQueued());
    render(3.0);
    EXPECT_TRUE(promoted.empty());
    EXPECT_EQ(ended.size(), 1U);
}

TEST_P(Transport, aFileThatGivesOutEarlyEndsThere) {
    const auto broken = std::make_shared<MadeFile>(kRate, 2, ramp(60000), 300000);
    ASSERT_TRUE(load(track(broken)));
    const auto second = track(stereo(ramp(48000, 60000)));
    ASSERT_TRUE(engine.preloadNext(second));
    render(3.0);
    EXPECT_EQ(wrongFrames(0, 108000, 0), 0);
    EXPECT_EQ(promoted, (std::vector{std::pair(second.trackID, int64_t{60000})}));
    EXPECT_EQ(ended, std::vector<int64_t>{108000});
}

TEST_P(Transport, loadingAnotherTrackLosesNoneOfIt) {
    ASSERT_TRUE(load(track(stereo(ramp(480000)))));
    render(1.0);
    const int64_t start = offline.position() + kEdge + latencyOfChain;
    ASSERT_TRUE(load(track(stereo(ramp(48000)))));
    render(2.0);
    EXPECT_EQ(wrongFrames(start, 48000, 0), 0);
}

TEST_P(Transport, stopUnloads) {
    ASSERT_TRUE(load(track(stereo(ramp(480000)))));
    render(1.0);
    engine.stop(0);
    EXPECT_FALSE(engine.isPlaying());
    EXPECT_FALSE(engine.isLoaded());
    EXPECT_EQ(engine.duration(), 0);
    const int64_t silence = offline.position() + kEdge;
    render(2.0);
    EXPECT_TRUE(isSilent(silence, kRate));
    EXPECT_TRUE(ended.empty());
    EXPECT_FALSE(offline.output().isRunning()) << "nothing is left to hear";
}

TEST_P(Transport, goesOnFromTheLastHeardFrameWhenTheOutputIsBack) {
    ASSERT_TRUE(load(track(stereo(ramp(480000)))));
    ASSERT_TRUE(engine.preloadNext(track(stereo(ramp(48000, 480000)))));
    render(2.0);
    const int64_t heardThen = heard();
    offline.output().lose();
    render(5.0);
    EXPECT_FALSE(engine.isOutputOpen());
    EXPECT_FALSE(engine.outputNotice().isEmpty());
    EXPECT_TRUE(engine.isPlaying());
    EXPECT_DOUBLE_EQ(engine.currentTime(), static_cast<double>(heardThen) / kRate);
    engine.openOutput({});
    const int64_t start = offline.position();
    render(9.5);
    EXPECT_TRUE(engine.outputNotice().isEmpty());
    EXPECT_EQ(wrongFrames(start + kEdge, 528000 - heardThen - kEdge, heardThen + kEdge), 0);
    EXPECT_EQ(promoted.size(), 1U);
    EXPECT_EQ(ended.size(), 1U);
}

TEST_P(Transport, renderingNeitherAllocatesNorLocks) {
    if (!RealtimeGuard::isActive())
        GTEST_SKIP() << "sanitizers replace the allocator";
    ASSERT_TRUE(load(track(stereo(ramp(480000)))));
    struct Guarded final : RenderClient {
        void render(float* interleaved, int frames) noexcept override {
            const RealtimeGuard guard;
            client->render(interleaved, frames);
        }
        RenderClient* client = nullptr;
    } guarded;
    guarded.client = &offline.output().client();
    offline.output().setClient(guarded);
    const int before = RealtimeGuard::offences();
    engine.setEqEnabled(true);
    engine.setCompressor(true, CompressorPreset::Punch);
    engine.setLoudness(true, 0.5, LoudnessStrength::Medium);
    render(0.5);
    engine.seek(5);
    render(0.5);
    engine.pause(100);
    render(0.5);
    engine.play(100);
    engine.setVolume(0.3);
    render(0.5);
    engine.stop(100);
    render(0.5);
    EXPECT_EQ(RealtimeGuard::offences(), before);
}

} // namespace
} // namespace quorel::test
