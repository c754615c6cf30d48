#include "audio/Meter.h"

#include "EngineFixture.h"

namespace quorel::test {
namespace {

constexpr int kTick = 3200; // frames between two meter ticks at 48 kHz
const double kPreGainDb = -0.8;

class Meters : public EngineTest {
  protected:
    const MeterValues& shown() const { return engine.meters(); }

    /// The highest levels of ten ticks: a steady level falls by a step and comes back.
    MeterValues highest(OfflineRenderer& renderer) {
        MeterValues values = renderer.engine().meters();
        for (int tick = 0; tick < 10; ++tick) {
            renderer.render(kTick, out);
            for (double MeterValues::*level : {&MeterValues::vuLeftDb, &MeterValues::vuRightDb,
                                               &MeterValues::peakLeftDb, &MeterValues::peakRightDb})
                values.*level = std::max(values.*level, renderer.engine().meters().*level);
        }
        return values;
    }
};
INSTANTIATE_TEST_SUITE_P(OutputLatency, Meters, testing::Values(0, 9600));

TEST_P(Meters, restWhileNothingPlays) {
    const auto wakeUps = [this] { // in a second
        int count = 0;
        for (int ms = 0; ms < 1000; ++ms) {
            const auto next = offline.clock().nextDeadline();
            renderFrames(kRate / 1000);
            count += offline.clock().nextDeadline() == next ? 0 : 1;
        }
        return count;
    };
    EXPECT_LE(wakeUps(), 5);
    ASSERT_TRUE(load(track(stereo(tone(10 * kRate, 1000, kRate, 0.5)))));
    EXPECT_GE(wakeUps(), 15);
    engine.pause(0);
    render(1);
    EXPECT_LE(wakeUps(), 5);
    engine.resume(0);
    EXPECT_GE(wakeUps(), 15);
}

TEST_P(Meters, showTheLevelOfTheProgramme) {
    // Peak of the sine; what the meters show of it.
    const std::tuple<const char*, double, double, double> cases[] = {
        {"full scale", 1, 0, kPreGainDb},
        {"-20 dBFS", 0.1, -20 - 3.0103 + kPreGainDb + 12, -20 + kPreGainDb},
        {"below the floor", 0.001, -30, -30},
    };
    for (const auto& [what, level, vuDb, peakDb] : cases) {
        for (const bool quietOutput : {false, true}) {
            OfflineRenderer renderer({kRate, rt::ChannelLayout::usual(2)}, GetParam());
            AudioEngine& player = renderer.engine();
            player.setVolume(quietOutput ? 0 : 1); // neither volume nor fade shows
            ASSERT_FALSE(player.load(track(stereo(tone(4 * kRate, 1000, kRate, level))),
                                     quietOutput ? 10000 : 0));
            renderer.render(kRate, out);
            const MeterValues meters = highest(renderer);
            EXPECT_NEAR(meters.vuLeftDb, vuDb, 0.02) << what;
            EXPECT_NEAR(meters.peakLeftDb, peakDb, 0.02) << what;
            EXPECT_NEAR(meters.vuRightDb, vuDb, 0.02) << what;
            EXPECT_NEAR(meters.peakRightDb, peakDb, 0.02) << what;
            EXPECT_GE(meters.peakHoldLeftDb, meters.peakLeftDb - 0.9) << what;
            EXPECT_EQ(meters.spectrumBars[4] > 0.3F, level > 0.01) << what;
        }
    }
}

TEST_P(Meters, showTheChannelsApart) {
    Samples leftOnly = tone(2 * kRate, 1000, kRate, 0.5);
    for (std::size_t i = 1; i < leftOnly.size(); i += 2)
        leftOnly[i] *= 0.1F;
    ASSERT_TRUE(load(track(stereo(std::move(leftOnly)))));
    render(1);
    const MeterValues levels = highest(offline);
    EXPECT_NEAR(levels.peakLeftDb, -6.02 + kPreGainDb, 0.02);
    EXPECT_NEAR(levels.peakRightDb, -26.02 + kPreGainDb, 0.02);
    EXPECT_NEAR(levels.vuRightDb, -26.02 - 3.01 + kPreGainDb + 12, 0.02);
    EXPECT_LT(shown().peakHoldRightDb, shown().peakHoldLeftDb - 15);

    OfflineRenderer mono({kRate, rt::ChannelLayout::usual(1)}, GetParam());
    const MeterValues& both = mono.engine().meters();
    ASSERT_FALSE(mono.engine().load(track(stereo(tone(2 * kRate, 1000, kRate, 0.05))), 0));
    mono.render(kRate, out);
    EXPECT_GT(both.peakRightDb, -30);
    EXPECT_TRUE(both.peakRightDb == both.peakLeftDb && both.vuRightDb == both.vuLeftDb);
}

// Each tick shows the 4096 frames that end at the newest whole hop of what has been heard.
TEST_P(Meters, followTheEar) {
    ASSERT_TRUE(load(track(stereo(ramp(4 * kRate)))));
    renderFrames(10); // what is due at a tick's frame happens when rendering goes on
    for (int tick = 1; tick < 50; ++tick) {
        renderFrames(kTick);
        if (tick <= 1 + 3 * GetParam() / kTick)
            continue; // the output's buffer, or the first window, is filling
        const int64_t heardAtTick = int64_t{tick} * kTick - GetParam();
        const int64_t last = rampFrame(shown().waveform[255]) + latencyOfChain; // sample 4080
        EXPECT_EQ(last + 16, heardAtTick - heardAtTick % rt::MeterTap::kHop) << tick;
        EXPECT_EQ(rampFrame(shown().waveform[0]) + latencyOfChain, last - 4080) << tick;
    }
}

TEST_P(Meters, fallSteadilyInSilence) {
    Samples samples = tone(kRate / 2, 1000, kRate, 1);
    samples.resize(2 * 5 * kRate);
    ASSERT_TRUE(load(track(stereo(std::move(samples)))));
    // The tone has left the meters some 0.1 s after it was heard.
    renderFrames(kRate / 2 + GetParam() + 3 * kTick);
    const MeterValues first = shown();
    ASSERT_GT(first.vuLeftDb, -10);
    renderFrames(3 * kTick); // 0.2 s: three ticks, one decay of the holds
    EXPECT_NEAR(shown().vuLeftDb, first.vuLeftDb - 3 * 1.5, 1e-9);
    EXPECT_NEAR(shown().peakRightDb, first.peakRightDb - 3 * 2.5, 1e-9);
    EXPECT_NEAR(shown().peakHoldLeftDb, first.peakHoldLeftDb - 0.9, 1e-9);
    EXPECT_EQ(shown().spectrumBars, decltype(shown().spectrumBars){});

    engine.pause(0);
    const MeterValues paused = shown();
    renderFrames(kRate); // five ticks of 0.2 s
    EXPECT_NEAR(shown().vuLeftDb, paused.vuLeftDb - 5 * 3, 1e-9);
    EXPECT_NEAR(shown().peakLeftDb, std::max(paused.peakLeftDb - 5 * 3, -30.0), 1e-9);
    EXPECT_NEAR(shown().peakHoldLeftDb, paused.peakHoldLeftDb - 5 * 0.9, 1e-9);

    render(10);
    int changes = 0;
    engine.onMetersChanged = [&changes] { ++changes; };
    render(1);
    EXPECT_EQ(shown().vuRightDb + shown().peakRightDb + shown().peakHoldRightDb, 3 * -30);
    EXPECT_EQ(changes, 0) << "nothing is told when nothing changes";
    engine.resume(0);
    render(1);
    EXPECT_NEAR(changes, 15, 1);
}

TEST_P(Meters, fallWithoutAnOutput) {
    ASSERT_TRUE(load(track(stereo(tone(4 * kRate, 1000, kRate, 1)))));
    render(1);
    const MeterValues before = shown();
    ASSERT_GT(before.vuLeftDb, -5);
    offline.output().lose();
    render(1);
    ASSERT_TRUE(engine.isPlaying());
    EXPECT_NEAR(shown().vuLeftDb, before.vuLeftDb - 5 * 3, 1e-9);
    EXPECT_NEAR(shown().peakHoldLeftDb, before.peakHoldLeftDb - 5 * 0.9, 1e-9);
}

TEST(Meter, ofAShortBuffer) {
    rt::MeterFrames delivered;
    Meter meter;
    EXPECT_FALSE(meter.tick(delivered)) << "nothing delivered yet";
    delivered.meterCount = rt::MeterFrames::kCapacity;
    const Samples sound = tone(rt::MeterFrames::kCapacity, 1000, 48000);
    for (std::size_t i = 0; i < delivered.meterL.size(); ++i)
        delivered.meterL[i] = sound[2 * i];
    ASSERT_TRUE(meter.tick(delivered));
    const MeterValues before = meter.values();

    delivered.meterCount = 200;
    for (std::size_t i = 0; i < delivered.meterL.size(); ++i)
        delivered.meterL[i] = static_cast<float>(i) / 100;
    ASSERT_TRUE(meter.tick(delivered));
    for (std::size_t i = 0; i < 256; ++i) {
        EXPECT_EQ(meter.values().waveform[i],
                  static_cast<float>(std::min<std::size_t>(i, 199)) / 100);
    }
    EXPECT_EQ(meter.values().spectrumBars, before.spectrumBars);
    EXPECT_NEAR(meter.values().peakLeftDb, 20 * std::log10(1.99), 1e-6) << "over full scale";
}

TEST(MeterTap, neitherWaitsNorAllocates) {
    rt::MeterTap tap;
    tap.prepare({48000, rt::ChannelLayout::usual(2)});
    Samples sound = ramp(rt::kMaxBlockFrames);
    const auto pass = [&](int frames, int blockFrames = rt::kMaxBlockFrames) {
        const RealtimeGuard guard;
        const int before = RealtimeGuard::offences();
        for (; frames > 0; frames -= blockFrames) {
            rt::Block block{{sound.data()}, 1, std::min(frames, blockFrames)};
            tap.process(block);
        }
        EXPECT_EQ(RealtimeGuard::offences(), before);
    };
    rt::MeterFrames& frames = tap.frames();
    frames.meterLock.lock();
    pass(4096);
    EXPECT_EQ(frames.meterCount, 0) << "someone is reading";
    frames.meterLock.unlock();
    pass(100, 7);
    EXPECT_EQ(frames.meterCount, 4096) << "delivered late rather than never";
    EXPECT_EQ(frames.meterL[511], sound[1022]);

    tap.setOutputDelay(int64_t{1} << 60); // more than can be kept: as much as there is
    tap.prepare({48000, rt::ChannelLayout::usual(2)});
    frames.meterCount = 0;
    pass(94 * 512);
    EXPECT_EQ(frames.meterCount, 0);
    pass(3 * 94 * 512);
    EXPECT_EQ(frames.meterCount, 4096);
    for (std::size_t i = 0; i < 4096; ++i) {
        EXPECT_EQ(frames.meterL[i], -frames.meterR[i]);
        EXPECT_EQ(frames.meterL[i], sound[2 * (i % 512)]);
    }
}

} // namespace
} // namespace quorel::test
