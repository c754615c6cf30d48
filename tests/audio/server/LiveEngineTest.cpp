// The whole way to the ear: engine, worker and output thread on real sound servers, what arrives
// there captured and compared frame by frame.
#include "LiveEngineFixture.h"
#include "audio/OfflineRenderer.h"
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

TEST_P(LiveEngine, aCutRecordingComesThroughTheConverterAsIfUncut) {
    constexpr int64_t frames = 132301;
    constexpr int64_t cut = 60013;
    const Samples whole = music(frames);
    const auto piece = [&](int64_t from, int64_t to) {
        return trackOf(std::make_shared<MadeFile>(44100, 2, part(whole, from, to)));
    };
    const auto captured = [&] {
        Recorder recorder("sink_a");
        LivePlayer player;
        playAloud(player, recorder, piece(0, cut));
        EXPECT_TRUE(player.engine.preloadNext(piece(cut, frames)));
        EXPECT_TRUE(player.runUntil([&] { return player.ended == 1; }));
        player.run(1000ms);
        return recorder.samples();
    };

    OfflineRenderer uncut({kRate, rt::ChannelLayout::usual(2)});
    ASSERT_FALSE(uncut.engine().load(piece(0, frames), 0));
    Samples expected;
    uncut.render(4 * kRate, expected);
    // Both from their first sound to their last.
    const auto sounding = [](Samples samples) {
        const auto sounds = [](float sample) { return sample != 0.0F; };
        samples.erase(std::find_if(samples.rbegin(), samples.rend(), sounds).base(), samples.end());
        samples.erase(samples.begin(), std::ranges::find_if(samples, sounds));
        return samples;
    };
    expected = sounding(expected);
    Samples got = sounding(captured());
    // A server that had to wait for a processor captures a block twice; what we do wrong comes
    // back.
    for (int again = 0; again < 2 && got.size() != expected.size(); ++again)
        got = sounding(captured());
    ASSERT_EQ(got.size(), expected.size());
    float worst = 0;
    for (std::size_t i = 0; i < got.size(); ++i)
        worst = std::max(worst, std::abs(got[i] - expected[i]));
    EXPECT_LT(worst, 1e-6F);
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

TEST_P(LiveEngine, pauseAndSeekComeOutAtTheFrameAskedFor) {
    Recorder recorder("sink_a");
    LivePlayer player;
    playAloud(player, recorder, track(960000));
    player.run(500ms);
    player.engine.pause(0);
    const auto paused = heardInAll(player, recorder);
    player.run(500ms); // the output is halted by now
    player.engine.resume(0);
    ASSERT_TRUE(player.runUntil([&] { return recorder.latest() != 0.0F; }));
    player.run(300ms);
    const auto resumed = heard(recorder.samples());
    // The edges scale the numbers, the frames between them tell where the music went on.
    ASSERT_GT(resumed.size(), paused.size() + 2 * kEdge);
    EXPECT_NEAR(static_cast<double>(resumed[paused.size() + kEdge + 100]),
                static_cast<double>(paused.size()) + kEdge + 100, 2);
    player.engine.seek(10.0);
    player.run(500ms);
    player.engine.stop(0);
    const auto all = heardInAll(player, recorder);
    const auto target = std::ranges::find(all, 480000 + kEdge);
    ASSERT_NE(target, all.end());
    EXPECT_EQ(*(target + 4000), 480000 + kEdge + 4000);
    EXPECT_LT(player.longestTurn, kWaited);
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

TEST_P(LiveEngine, withoutAServerItWaitsAndThenPlays) {
    server->kill();
    LivePlayer player;
    ASSERT_FALSE(player.engine.load(track(96000), 0));
    player.run(700ms);
    EXPECT_FALSE(player.engine.isOutputOpen());
    EXPECT_FALSE(player.engine.outputNotice().isEmpty());
    EXPECT_EQ(player.engine.currentTime(), 0);
    server->start();
    ASSERT_TRUE(player.runUntil([&] { return player.ended == 1; }));
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
