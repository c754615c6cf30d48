// Devices that come, go and change while the engine plays, on real sound servers.
#include "LiveEngineFixture.h"

#include <algorithm>

namespace quorel::test {
namespace {

using namespace std::chrono_literals;

class LiveDevices : public LiveEngineTest {
  protected:
    void SetUp() override {
        LiveEngineTest::SetUp();
        if (!IsSkipped())
            startServer({"sink_b", "sink_a"});
    }
    static QStringList uids(const LivePlayer& player) {
        QStringList found;
        for (const OutputDevice& device : player.engine.outputDevices())
            found += device.uid;
        return found;
    }
    /// Waits until the track is heard on a sink, checks that it is whole there and that the
    /// position is that of the sound, and returns the track's frame that was heard there first.
    static int64_t heardOn(LivePlayer& player, const Recorder& recorder) {
        EXPECT_TRUE(player.runUntil([&] { return recorder.latest() != 0.0F; }));
        player.run(400ms);
        const std::vector<int64_t> all = heard(recorder.samples());
        if (all.size() < 4 * kEdge) {
            ADD_FAILURE() << "heard only " << all.size() << " frames";
            return -1;
        }
        // Past the edge of a soft start, whose frames do not show their numbers.
        const std::vector<int64_t> numbers(all.begin() + 2 * kEdge, all.end());
        EXPECT_TRUE(breaks(numbers).empty());
        // The position is published every 0.2 s.
        EXPECT_NEAR(static_cast<double>(numbers.back()) / kRate, player.engine.currentTime(), 0.3);
        return numbers.front() - 2 * kEdge;
    }
};
INSTANTIATE_TEST_SUITE_P(Servers, LiveDevices, kEachServer, serverName);

TEST_P(LiveDevices, aChosenOneThatVanishesIsStoodInForAndReturnedTo) {
    LivePlayer player(QStringLiteral("sink_a"));
    int changes = 0;
    player.engine.onOutputDevicesChanged = [&] { ++changes; };
    int64_t last = 0;
    {
        Recorder chosen("sink_a");
        playAloud(player, chosen, track(960000));
        EXPECT_EQ(heardOn(player, chosen), 0);
        last = heard(chosen.samples()).back();
    }
    const int seen = changes;
    Recorder standIn("sink_b");
    EXPECT_EQ(standIn.latest(), 0.0F);
    server->removeSink("sink_a");
    EXPECT_NEAR(static_cast<double>(heardOn(player, standIn)), static_cast<double>(last),
                0.5 * kRate);
    EXPECT_GT(changes, seen);
    EXPECT_EQ(uids(player), QStringList{QStringLiteral("sink_b")});
    EXPECT_TRUE(player.engine.outputNotice().isEmpty());

    last = heard(standIn.samples()).back();
    server->addSink("sink_a");
    Recorder back("sink_a");
    EXPECT_NEAR(static_cast<double>(heardOn(player, back)), static_cast<double>(last), kRate);
    EXPECT_EQ(standIn.latest(), 0.0F);
    EXPECT_TRUE(player.engine.isPlaying());
    EXPECT_LT(player.longestTurn, kWaited);
}

TEST_P(LiveDevices, theDefaultIsFollowedAndAChosenOneKept) {
    LivePlayer player;
    {
        Recorder first("sink_b");
        playAloud(player, first, track(960000));
        EXPECT_EQ(heardOn(player, first), 0);
    }
    const double before = player.engine.currentTime();
    server->setDefault("sink_a");
    {
        const Recorder followed("sink_a");
        heardOn(player, followed);
    }
    EXPECT_GT(player.engine.currentTime(), before);
    // Chosen by its number, sink_b stays; so it does when only a restart is asked for.
    const QList<OutputDevice> devices = player.engine.outputDevices();
    const auto sinkB = std::ranges::find(devices, QStringLiteral("sink_b"), &OutputDevice::uid);
    ASSERT_NE(sinkB, devices.end());
    player.engine.setOutputDevice(sinkB->id);
    const Recorder chosen("sink_b");
    heardOn(player, chosen);
    player.engine.setOutputDevice({});
    const Recorder restarted("sink_b");
    heardOn(player, restarted);
    server->setDefault("sink_b");
    server->setDefault("sink_a");
    const Recorder kept("sink_b");
    heardOn(player, kept);
    EXPECT_TRUE(player.engine.outputNotice().isEmpty());
    EXPECT_LT(player.longestTurn, kWaited);
}

TEST_P(LiveDevices, areListedInTheServersOrderWithoutInputsAndStandIns) {
    const bool pulse = GetParam() == SoundServer::Kind::PulseAudio;
    const std::vector<std::string> input =
        pulse ? std::vector<std::string>{"module-null-source", "source_name=microphone"}
              : std::vector<std::string>{"module-null-sink", "media.class=Audio/Source/Virtual",
                                         "sink_name=microphone"};
    ASSERT_FALSE(server->loadModule(input).empty());
    if (pulse) { // PipeWire has its stand-in from the start
        ASSERT_FALSE(server->loadModule({"module-always-sink"}).empty());
    }
    LivePlayer player;
    int changes = 0;
    player.engine.onOutputDevicesChanged = [&] { ++changes; };
    const auto listed = [&](const QStringList& wanted) {
        EXPECT_TRUE(player.runUntil([&] { return uids(player) == wanted; }, 5s))
            << uids(player).join(u' ').toStdString();
        return changes;
    };
    const auto serversOrder = [&] {
        QStringList names;
        for (const std::string& name : server->sinkNames()) {
            names += QString::fromStdString(name);
        }
        return names;
    };
    EXPECT_EQ(serversOrder().size(), 2);
    const int atFirst = listed(serversOrder());
    server->addSink("another");
    EXPECT_GT(listed(serversOrder()), atFirst);
    for (const char* name : {"another", "sink_a", "sink_b"})
        server->removeSink(name);
    listed({});
    EXPECT_EQ(server->sinkNames(), std::vector<std::string>{"auto_null"});
    EXPECT_TRUE(player.runUntil([&] { return !player.engine.isOutputOpen(); }));
    EXPECT_FALSE(player.engine.outputNotice().isEmpty());
}

} // namespace
} // namespace quorel::test
