#include "audio/output/OutputDeviceManager.h"
#include "audio/output/PulseOutput.h"
#include "support/SoundServer.h"

#include <gmock/gmock.h>

#include "OutputFixture.h"

#include <algorithm>
#include <optional>

using namespace quorel;
using namespace quorel::test;

namespace {

/// Every case runs on a real server of each kind, with the sinks sink_a (the default) and sink_b.
class PulseOutputTest : public testing::TestWithParam<SoundServer::Kind> {
  protected:
    void SetUp() override {
        const std::string missing = SoundServer::missingProgram(GetParam());
        if (!missing.empty()) {
            GTEST_SKIP() << missing << " is not installed";
        }
        server.emplace(GetParam());
        server->addSink("sink_a");
        server->addSink("sink_b");
    }

    void startServer() {
        server->start();
        server->setDefault("sink_a");
    }
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

    std::optional<SoundServer> server;
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
    output->start(listener.stream);
    ASSERT_TRUE(captured(recorder, 20000));
    output->start(listener.stream);
    ASSERT_TRUE(captured(recorder, 40000));
    const RampReading ramp = readRamp(recorder.samples(), 2);
    EXPECT_EQ(ramp.breaks, 1);
    EXPECT_EQ(listener.underflows, 0);
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
    until([&] {
        readings.push_back({std::chrono::steady_clock::now(), heardFrame(*output, 48000),
                            RampClient::rampOf(recorder.latest()) - (1 << 20)});
        return readings.back().captured > 3 * 48000;
    });
    double back = 0, ahead = -1e9, behind = -1e9;
    for (std::size_t i = 0; i + 100 < readings.size(); ++i) {
        back = std::max(back, readings[i].heard - readings[i + 1].heard);
        const auto later = std::ranges::find_if(
            readings, [&](const Reading& r) { return r.at >= readings[i].at + 60ms; });
        ahead = std::max(ahead, readings[i].heard - double(later->captured));
        if (readings[i].captured > 0) {
            behind = std::max(behind, double(readings[i].captured) - readings[i].heard);
        }
    }
    std::printf("back %.0f ahead %.0f behind %.0f frames\n", back, ahead, behind);
    std::FILE* f = std::fopen(server->kind() == SoundServer::Kind::PulseAudio ? "/tmp/pwt/t_pa" : "/tmp/pwt/t_pw", "w");
    for (auto& r : readings) std::fprintf(f, "%.2f %.1f %ld\n", (r.at - readings[0].at).count() / 1e6, r.heard / 48, r.captured / 48);
    std::fclose(f);
}

INSTANTIATE_TEST_SUITE_P(, PulseOutputTest,
                         testing::Values(SoundServer::Kind::PulseAudio,
                                         SoundServer::Kind::PipeWire),
                         [](const auto& test) {
                             return std::string(test.param == SoundServer::Kind::PulseAudio
                                                    ? "PulseAudio"
                                                    : "PipeWire");
                         });

} // namespace
