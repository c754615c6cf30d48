#include "audio/output/NullOutput.h"

#include "OutputFixture.h"

using namespace quorel;
using namespace quorel::test;

namespace {

class NullOutputTest : public testing::Test {
  protected:
    void play(int sampleRate = 48000) {
        output = std::make_unique<NullOutput>(clock, sampleRate);
        output->attach(client, listener);
        output->open({});
        ASSERT_TRUE(waitUntil(clock, [&] { return listener.openings == 1; }));
        output->start(listener.stream);
    }

    ManualClock clock;
    RampClient client;
    NotingListener listener{client};
    std::unique_ptr<NullOutput> output;
};

TEST_F(NullOutputTest, KeepsThePaceOfADevice) {
    const auto framesSince = [](std::chrono::steady_clock::time_point begin) {
        const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - begin;
        return passed.count() * 44100;
    };
    const auto begin = std::chrono::steady_clock::now();
    play(44100);
    EXPECT_EQ(listener.format, (rt::Format{44100, rt::ChannelLayout::usual(2)}));
    double last = 0;
    double back = 0;
    double ahead = 0;
    double behind = 0;
    ASSERT_TRUE(waitUntil(clock, [&] {
        const double before = framesSince(begin);
        const double heard = heardFrame(*output, 44100);
        back = std::max(back, last - heard);
        ahead = std::max(ahead, heard - framesSince(begin));
        behind = std::max(behind, before - heard);
        EXPECT_LE(output->timing().latency, 10ms);
        last = heard;
        return client.total >= 44100;
    }));
    EXPECT_LT(back, 44) << "1 ms";
    EXPECT_LT(ahead, 44) << "1 ms";
    EXPECT_LT(behind, 300 * 44.1) << "300 ms: its thread may have to wait for a processor";

    output->stop();
    ASSERT_TRUE(waitUntil(clock, [&] { return !output->timing().advancing; }));
    const int64_t asked = client.total;
    std::this_thread::sleep_for(50ms);
    EXPECT_EQ(client.total, asked);
}

TEST_F(NullOutputTest, LetsAMissedSecondGo) {
    play();
    ASSERT_TRUE(waitUntil(clock, [&] { return client.total > 4800; }));
    const int64_t before = client.total;
    client.delay = 1000ms;
    ASSERT_TRUE(waitUntil(clock, [&] { return client.total > before; }));
    std::this_thread::sleep_for(20ms);
    EXPECT_LT(client.total - before, 6 * 480 + 4800);
}

TEST_F(NullOutputTest, OpeningAnewEndsTheStream) {
    play();
    const uint64_t first = listener.stream;
    ASSERT_TRUE(waitUntil(clock, [&] { return client.total > 0; }));
    output->open({});
    ASSERT_TRUE(waitUntil(clock, [&] { return listener.openings == 2; }));
    EXPECT_NE(listener.stream, first);
    EXPECT_EQ(output->timing().framesWritten, 0);
    const int64_t asked = client.total;
    output->start(first);
    std::this_thread::sleep_for(30ms);
    EXPECT_EQ(client.total, asked);
}

} // namespace
