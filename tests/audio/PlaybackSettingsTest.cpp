#include "audio/PlaybackSettings.h"

#include "EngineFixture.h"
#include "audio/Segment.h"

#include <limits>

namespace quorel::test {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

class PlaybackSettings : public EngineTest {};
INSTANTIATE_TEST_SUITE_P(OutputLatency, PlaybackSettings, testing::Values(0));

TEST_P(PlaybackSettings, reachTheEngineWithinTheirRanges) {
    // Volume, balance and gain of band 1 as stored; left and right as heard; in dB, the gain
    // and the bass of the tone compensation, 0.12 dB a percent.
    const std::tuple<double, double, double, float, float, float, float> cases[] = {
        {0.5, 0, 3, 0.5, 0.5, 3, 6},
        {1, -1, -12, 1, 0, -12, 0},
        {7, 0.5, 1e9, 0.5F, 1, 12, 0},
        {-1, 0, -1e9, 0, 0, -12, 12},
        {1, 1e300, 1e300, 0, 1, 12, 0},
        {kNaN, kNaN, kNaN, 0, 0, 0, 12},
        {kInfinity, -kInfinity, -kInfinity, 0, 0, 0, 12},
    };
    for (const auto& [volume, pan, gain, left, right, eqDb, bassDb] : cases) {
        AppSettings settings;
        settings.volume = volume;
        settings.pan = pan;
        settings.eqOn = true;
        settings.eqGains = {0, gain};
        settings.loudness = true;
        settings.gapless = false;
        OfflineRenderer renderer({kRate, rt::ChannelLayout::usual(2)});
        applySettings(renderer.engine(), settings);
        EXPECT_FALSE(renderer.engine().gaplessEnabled);
        renderer.render(kRate / 2, out); // the published values get where they are going
        EXPECT_EQ(renderer.engine().eqBandGains()[1], eqDb);
        EXPECT_EQ(renderer.engine().eqBandGains()[2], 0);
        EXPECT_NEAR(renderer.engine().loudBandGains()[0], bassDb, 1e-5);

        settings.eqOn = settings.loudness = false;
        applySettings(renderer.engine(), settings);
        out.clear();
        ASSERT_FALSE(renderer.engine().load(track(stereo(Samples(2 * kRate, 0.5F))), 0));
        renderer.render(kRate, out);
        EXPECT_TRUE(renderer.engine().eqBypassed() && renderer.engine().loudBypassed());
        EXPECT_NEAR(out[static_cast<std::size_t>(kRate)], atRest(0.5F) * left, 1e-4);
        EXPECT_NEAR(out[static_cast<std::size_t>(kRate) + 1], atRest(0.5F) * right, 1e-4);
    }
}

TEST(FadeLength, isWholeMillisecondsWithinAMinute) {
    for (const auto& [on, ms, want] : {std::tuple{true, 250.0, 250},
                                       {false, 250.0, 0},
                                       {true, 0.9, 0},
                                       {true, -5.0, 0},
                                       {true, 1e300, 60000},
                                       {true, kNaN, 0}})
        EXPECT_EQ(fadeLengthMs(on, ms), want) << ms;
}

TEST(TrackToPlay, isMeasuredAndLimitedAsTheSettingsWant) {
    Samples samples(2 * 5 * 48000, 0.0F);
    const Samples sound = tone(48000, 1000, 48000, 0.05);
    std::copy(sound.begin(), sound.end(), samples.begin() + 2 * 2 * 48000);
    const double norm = std::pow(10.0, 12.0 / 20); // as far as it goes

    for (const bool trim : {false, true}) {
        for (const bool normalize : {false, true}) {
            AppSettings settings;
            settings.trimSilence = trim;
            settings.trimMaxSec = 1e9;
            settings.normalize = normalize;
            const auto file = std::make_shared<MadeFile>(48000, 2, samples);
            const TrackMeasures measures = measureFor(settings, *file);
            EXPECT_EQ(measures.trim.has_value(), trim);
            EXPECT_EQ(measures.levels.has_value(), normalize);
            EXPECT_EQ(file->position() > 0, trim || normalize) << "nothing read that is not needed";

            const TrackToPlay track = trackToPlay(settings, file, measures);
            EXPECT_EQ(track.file, file);
            EXPECT_NEAR(track.trimStart, trim ? 2 : 0, 1024 / 48000.0);
            EXPECT_EQ(track.trimEnd.has_value(), trim);
            EXPECT_NEAR(track.trimEnd.value_or(3), 3, 1024 / 48000.0);
            EXPECT_NEAR(track.normGain, normalize ? norm : 1, 1e-9);

            // Known from earlier, but not wanted now.
            const TrackToPlay whole =
                trackToPlay(AppSettings(), file, {Trim{1, 2}, Levels{0.1, 0.01}});
            EXPECT_EQ(whole.trimStart, 0);
            EXPECT_FALSE(whole.trimEnd);
            EXPECT_EQ(whole.normGain, 1);
        }
    }
}

// 49 / 48000 * 48000 is a little less than 49.
TEST(TrackToPlay, keepsTheLastFrameOfSound) {
    AppSettings settings;
    settings.trimSilence = true;
    const auto file = std::make_shared<MadeFile>(48000, 2, music(49));
    const TrackMeasures measures = measureFor(settings, *file);
    ASSERT_TRUE(measures.trim);
    EXPECT_EQ(segmentOf(trackToPlay(settings, file, measures))->t1, 49);
}

} // namespace
} // namespace quorel::test
