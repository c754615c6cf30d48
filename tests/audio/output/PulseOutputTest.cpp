#include "audio/output/PulseOutput.h"

#include "OutputFixture.h"
#include "support/SoundServerTest.h"

#include <algorithm>

using namespace quorel;
using namespace quorel::test;

namespace {

/// With the sinks sink_a, which is the default, and sink_b.
class PulseOutputTest : public SoundServerTest {
  protected:
    void startServer() { SoundServerTest::startServer({"sink_a", "sink_b"}); }
    void makeOutput() {
        output = std::make_unique<PulseOutput>(clock);
        output->attach(client, listener);
    }
    bool until(const std::function<bool()>& condition) { return waitUntil(clock, condition); }
    bool opened(int openings) {
        return until([&] { return listener.openings >= openings && listener.stream != 0; });
    }
    bool captured(const Recorder& recorder, int64_t frame, int channels = 2) {
        return until([&] { return readRamp(recorder.samples(), channels).last >= frame; });
    }
    /// With a running server, opens the device and starts.
    void play(const QString& uid = {}) {
        startServer();
        makeOutput();
        output->open(uid);
        ASSERT_TRUE(opened(1));
    }

    ManualClock clock;
    RampClient client;
    NotingListener listener{client};
    std::unique_ptr<PulseOutput> output;
};

TEST_P(PulseOutputTest, EveryFrameArrivesOnceAcrossStopsAndStarts) {
    play();
    EXPECT_EQ(client.total, 0) << "asked for sound before the start";
    const Recorder recorder("sink_a");
    constexpr int kPart = 20000;
    for (int part = 1; part <= 3; ++part) {
        client.limit = part * kPart;
        output->start(listener.stream);
        ASSERT_TRUE(captured(recorder, part * kPart)) << part;
        output->stop();
        ASSERT_TRUE(until([&] { return !output->timing().advancing; }));
    }
    const RampReading ramp = readRamp(recorder.samples(), 2);
    EXPECT_EQ(ramp.first, 1);
    EXPECT_EQ(ramp.last, 3 * kPart);
    EXPECT_EQ(ramp.breaks, 0);
    EXPECT_EQ(ramp.holes, 2);
    EXPECT_EQ(listener.underflows, 0);
}

TEST_P(PulseOutputTest, StartWhileRunningDropsWhatIsBuffered) {
    play();
    const Recorder recorder("sink_a");
    constexpr int kRestarts = 5;
    output->start(listener.stream);
    for (int i = 0; i < kRestarts; ++i) {
        ASSERT_TRUE(captured(recorder, client.frames + 2000));
        output->start(listener.stream);
    }
    ASSERT_TRUE(captured(recorder, client.frames + 2000));
    EXPECT_EQ(readRamp(recorder.samples(), 2).breaks, kRestarts);
    EXPECT_EQ(listener.underflows, 0) << "an emptied buffer is not a late one";
}

TEST_P(PulseOutputTest, TimingFollowsWhatIsCaptured) {
    play();
    const Recorder recorder("sink_a");
    struct Reading {
        std::chrono::steady_clock::time_point at;
        double heard;
        int64_t captured;
    };
    std::vector<Reading> readings;
    output->start(listener.stream);
    ASSERT_TRUE(until([&] {
        // The recorder's newest sample is one of the second channel.
        const int64_t captured = RampClient::rampOf(recorder.latest()) - (1 << 20);
        const double heard = std::max(0.0, heardFrame(*output, 48000));
        readings.push_back({std::chrono::steady_clock::now(), heard, captured});
        return captured > 2 * 48000;
    }));
    double back = 0;
    double behind = 0;
    double ahead = -48000;
    auto later = readings.begin();
    for (auto now = readings.begin(); now + 1 != readings.end(); ++now) {
        back = std::max(back, now->heard - (now + 1)->heard);
        behind = std::max(behind, static_cast<double>(now->captured) - now->heard);
        // The recording comes in some 20 to 60 ms late.
        while (later != readings.end() && later->at < now->at + 100ms)
            ++later;
        if (later != readings.end())
            ahead = std::max(ahead, now->heard - static_cast<double>(later->captured));
    }
    EXPECT_LT(back, 400);
    EXPECT_LT(behind, 60 * 48);
    EXPECT_LE(ahead, 0);
}

TEST_P(PulseOutputTest, SixChannelsAtTheSinksOwnRate) {
    // PipeWire would resample anything but its own rate.
    const int rate = GetParam() == SoundServer::Kind::PulseAudio ? 96000 : 48000;
    server->addSink("surround", rate, 6);
    play(QStringLiteral("surround"));
    EXPECT_EQ(listener.format.sampleRate, rate);
    EXPECT_EQ(listener.format.layout, rt::ChannelLayout::usual(6));
    const Recorder recorder("surround", rate, 6);
    output->start(listener.stream);
    ASSERT_TRUE(captured(recorder, 40000, 6));
    output->stop();
    for (int channel = 0; channel < 6; ++channel) {
        const RampReading ramp = readRamp(recorder.samples(), 6, channel);
        EXPECT_EQ(ramp.first, 1) << channel;
        EXPECT_EQ(ramp.breaks, 0) << channel;
    }
}

TEST_P(PulseOutputTest, ADefaultOfAnotherFormatNeedsANewStream) {
    play();
    output->start(listener.stream);
    server->setDefault("sink_b");
    const Recorder onB("sink_b");
    ASSERT_TRUE(captured(onB, client.frames + 20000));
    EXPECT_EQ(listener.openings, 1) << "one of the same format does not";
    server->addSink("mono", 48000, 1);
    server->setDefault("mono");
    ASSERT_TRUE(opened(2));
    EXPECT_EQ(listener.format.layout, rt::ChannelLayout::usual(1));
    EXPECT_EQ(listener.losses, 0);
}

TEST_P(PulseOutputTest, AFrozenServerHoldsNobodyUp) {
    play();
    output->start(listener.stream);
    ASSERT_TRUE(until([&] { return client.frames > 20000; }));
    server->freeze();
    std::chrono::nanoseconds longest{0};
    const auto timed = [&](const std::function<void()>& call) {
        const auto begin = std::chrono::steady_clock::now();
        call();
        longest =
            std::max<std::chrono::nanoseconds>(longest, std::chrono::steady_clock::now() - begin);
    };
    for (int i = 0; i < 200; ++i) {
        timed([&] { output->stop(); });
        timed([&] { output->start(listener.stream); });
        timed([&] { static_cast<void>(output->timing()); });
    }
    timed([&] { output->open(QStringLiteral("sink_b")); });
    ASSERT_TRUE(until([&] { return listener.losses == 1; })) << "no answer is told as a loss";
    timed([&] { output.reset(); });
    EXPECT_LT(longest, 250ms) << "the server stands still for seconds";
}

TEST_P(PulseOutputTest, ASuspendedDeviceHoldsThePosition) {
    if (GetParam() == SoundServer::Kind::PipeWire)
        GTEST_SKIP() << "PipeWire does not suspend a sink in use";
    play();
    output->start(listener.stream);
    ASSERT_TRUE(until([&] { return output->timing().advancing; }));
    server->suspend("sink_a", true);
    ASSERT_TRUE(until([&] { return !output->timing().advancing; }));
    server->suspend("sink_a", false);
    ASSERT_TRUE(until([&] { return output->timing().advancing; }));
    EXPECT_FALSE(listener.stalled);
}

TEST_P(PulseOutputTest, AnUnderflowLengthensTheBuffer) {
    play();
    output->start(listener.stream);
    ASSERT_TRUE(until([&] { return client.frames > 20000; }));
    client.delay = 400ms;
    ASSERT_TRUE(until([&] { return listener.underflows > 0; }));
    ASSERT_TRUE(until([&] { return output->timing().latency > 140ms; }));
    const int64_t frames = client.frames;
    ASSERT_TRUE(until([&] { return client.frames > frames + 20000; }));
    EXPECT_TRUE(output->timing().advancing);
}

TEST_P(PulseOutputTest, TellsNothingAfterItsEnd) {
    play();
    output->start(listener.stream);
    ASSERT_TRUE(until([&] { return client.frames > 20000; }));
    output->open(QStringLiteral("sink_b"));
    std::this_thread::sleep_for(100ms); // the answer is posted, and not run
    output.reset();
    const int64_t asked = client.total;
    clock.runPosted();
    EXPECT_EQ(listener.openings, 1);
    EXPECT_EQ(client.total, asked);
}

INSTANTIATE_TEST_SUITE_P(, PulseOutputTest, kEachServer, serverName);

} // namespace
