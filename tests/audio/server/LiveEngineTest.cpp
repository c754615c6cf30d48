// The whole way to the ear: engine, worker and output thread on real sound servers, what arrives
// there captured and compared frame by frame.
#include "LiveEngineFixture.h"
#include "support/ChildProcess.h"

#include <cstdlib>
#include <thread>

namespace quorel::test {
namespace {

using namespace std::chrono_literals;

class LiveEngine : public LiveEngineTest {
  protected:
    void SetUp() override {
        LiveEngineTest::SetUp();
        if (!IsSkipped())
            startServer({"sink_a"});
    }
};
INSTANTIATE_TEST_SUITE_P(Servers, LiveEngine, kEachServer, serverName);

TEST_P(LiveEngine, everyFrameOfJoinedTracksArrivesOnce) {
    Recorder recorder("sink_a");
    LivePlayer player;
    playAloud(player, recorder, track(96001));
    ASSERT_TRUE(player.engine.preloadNext(track(72000, 96001)));
    ASSERT_TRUE(player.runUntil([&] { return player.ended == 1; }));
    const auto numbers = heardInAll(player, recorder);
    ASSERT_EQ(numbers.size(), 168001U);
    EXPECT_EQ(numbers.front(), 0);
    EXPECT_TRUE(breaks(numbers).empty());
    EXPECT_EQ(player.engine.outputCounts().underruns, 0);
}

TEST_P(LiveEngine, anotherRateFollowsAfterAShortSilenceAndWhole) {
    Recorder recorder("sink_a");
    LivePlayer player;
    const auto next = std::make_shared<MadeFile>(44100, 1, Samples(44100, 0.25F));
    player.engine.onTrackEnded = [&] {
        if (++player.ended == 1) {
            EXPECT_FALSE(player.engine.load(trackOf(next), 0));
        }
    };
    playAloud(player, recorder, track(48000));
    ASSERT_TRUE(player.runUntil([&] { return player.ended == 2; }));
    player.run(1000ms);
    const auto samples = recorder.samples();
    int64_t silence = 0; // between the last of the ramp and the first of the next track
    int64_t second = 0;
    const float level = 0.25F * std::pow(10.0F, -0.8F / 20.0F);
    for (std::size_t i = 0; i < samples.size(); i += 2) {
        const bool ofSecond = std::abs(samples[i] - level) < 0.1F;
        second += ofSecond ? 1 : 0;
        silence = samples[i] == 0.0F && second == 0 ? silence + 1 : second == 0 ? 0 : silence;
    }
    EXPECT_LE(silence, kRate / 4);
    EXPECT_NEAR(static_cast<double>(second), kRate, 60) << "but for the converter's soft edges";
}

TEST_P(LiveEngine, goesOnFromTheLastHeardFrameAfterTheServerDied) {
    LivePlayer player;
    int64_t before = 0;
    {
        Recorder recorder("sink_a");
        playAloud(player, recorder, track(960000));
        player.run(700ms);
        before = static_cast<int64_t>(heard(recorder.samples()).size());
        server->kill();
    }
    ASSERT_TRUE(player.runUntil([&] { return !player.engine.isOutputOpen(); }));
    EXPECT_FALSE(player.engine.outputNotice().isEmpty());
    const double held = player.engine.currentTime();
    EXPECT_NEAR(held, static_cast<double>(before) / kRate, 0.25);
    player.run(500ms);
    EXPECT_EQ(player.engine.currentTime(), held);
    EXPECT_TRUE(player.engine.isPlaying());
    server->start();
    Recorder recorder("sink_a");
    ASSERT_TRUE(player.runUntil([&] { return player.engine.isOutputOpen(); }));
    ASSERT_TRUE(player.runUntil([&] { return recorder.latest() != 0.0F; }));
    player.run(300ms);
    const auto numbers = heard(recorder.samples());
    ASSERT_GT(numbers.size(), 3 * kEdge);
    EXPECT_NEAR(static_cast<double>(numbers[2 * kEdge] - 2 * kEdge), held * kRate, 8192);
    EXPECT_LT(player.longestTurn, kWaited);
}

TEST_P(LiveEngine, aFrozenServerHoldsThePositionAndNotTheProgram) {
    Recorder recorder("sink_a");
    LivePlayer player;
    playAloud(player, recorder, track(960000));
    player.run(500ms);
    server->freeze();
    player.run(2500ms);
    const double frozen = player.engine.currentTime();
    EXPECT_LT(frozen, 1.5);
    EXPECT_FALSE(player.engine.outputNotice().isEmpty());
    player.engine.setVolume(0.5);
    player.engine.seek(5);
    player.engine.pause(0);
    player.engine.resume(0);
    player.run(300ms);
    EXPECT_NEAR(player.engine.currentTime(), 5, 0.01);
    server->thaw();
    ASSERT_TRUE(player.runUntil([&] { return player.engine.currentTime() > 5.5; }));
    EXPECT_TRUE(player.engine.outputNotice().isEmpty());
    EXPECT_LT(player.longestTurn, kWaited);
}

/// Keeps every processor busy, twice over.
class Load {
  public:
    Load() {
        for (unsigned i = 0; i < 2 * std::thread::hardware_concurrency(); ++i) {
            processes_.emplace_back(std::vector<std::string>{"sh", "-c", "while :; do :; done"},
                                    "/dev/null");
        }
    }

  private:
    std::vector<ChildProcess> processes_;
};

// QUOREL_SOAK_SECONDS makes it last longer than a moment.
TEST_P(LiveEngine, keepsPlayingWhileTheProcessorsAreBusy) {
    const char* wanted = std::getenv("QUOREL_SOAK_SECONDS");
    const auto length = std::chrono::seconds(wanted ? std::atoi(wanted) : 5);
    Recorder recorder("sink_a");
    LivePlayer player;
    const Load load;
    constexpr int64_t kPeriod = 900000; // of a ramp that follows itself again and again
    player.engine.onNeedPreload = [&] { player.engine.preloadNext(track(kPeriod)); };
    playAloud(player, recorder, track(kPeriod));
    player.run(length);
    EXPECT_EQ(player.engine.outputCounts().underflows, 0);
    EXPECT_EQ(player.engine.outputCounts().underruns, 0);
    player.engine.stop(0);
    player.run(500ms);
    auto numbers = heard(recorder.samples());
    ASSERT_GT(numbers.size(), kRate * (static_cast<std::size_t>(length.count()) - 1));
    numbers.resize(numbers.size() - 2 * kEdge); // the fade at the end
    int lost = 0;
    for (const std::size_t place : breaks(numbers))
        lost += numbers[place] == 0 && numbers[place - 1] == kPeriod - 1 ? 0 : 1;
    EXPECT_EQ(lost, 0);
}

} // namespace
} // namespace quorel::test
