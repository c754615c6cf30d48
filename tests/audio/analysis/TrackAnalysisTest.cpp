#include "audio/analysis/TrackAnalysis.h"

#include "support/AudioFixtures.h"
#include "support/MadeFile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <limits>

namespace quorel::test {
namespace {

constexpr int kRate = 44100;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// Silence with a tone between two frames, on the right channel only.
MadeFile toneBetween(int64_t begin, int64_t end, int64_t length) {
    Samples samples(static_cast<std::size_t>(2 * length));
    for (int64_t n = begin; n < end; ++n) {
        samples[static_cast<std::size_t>(2 * n + 1)] = n % 2 == 0 ? 0.5F : -0.5F;
    }
    return {kRate, 2, std::move(samples)};
}

TEST(Trim, cutsWholeQuietBlocks) {
    struct Case {
        const char* what;
        int64_t soundBegin, soundEnd, length;
        double thresholdDb, maxSeconds;
        int64_t start, end;
    };
    constexpr int64_t kLong = 10 * kRate;
    constexpr int64_t k3s = 3 * kRate;
    for (const Case& c : {
             Case{"sound from 0.5 s on", 22050, kLong, kLong, -60, 3, 21504, kLong},
             Case{"sound in the last frame of a block", 2047, kLong, kLong, -60, 3, 1024, kLong},
             Case{"sound in the first frame", 0, kLong, kLong, -60, 3, 0, kLong},
             Case{"more silence than may go", 5 * kRate, kLong, kLong, -60, 3, k3s, kLong},
             Case{"a quiet tail", 0, 8 * kRate, kLong, -60, 3, 0, 7 * kRate + 44 * 1024},
             Case{"a quiet tail longer than may go", 0, 5 * kRate, kLong, -60, 3, 0, kLong - k3s},
             Case{"all silent", 0, 0, kLong, -60, 6, 0, kLong},
             Case{"silent at both ends", 0, 0, kLong, -60, 3, k3s, kLong - k3s},
             Case{"a level at the threshold", 0, kLong, kLong, 20 * std::log10(0.5), 3, k3s,
                  kLong - k3s},
             Case{"both ends of a short file", 5000, 6000, 9000, -60, 3, 4096, 6144},
             Case{"quiet up to where the scans cross", 0, 0, 6 * kRate, -60, 3, 0, 6 * kRate},
             Case{"nothing may go", 22050, 30000, kLong, -60, 0, 0, kLong},
             Case{"less than nothing may go", 22050, 30000, kLong, -60, -1, 0, kLong},
             Case{"end of the last block", 0, 8999, 9000, -60, 3, 0, 9000},
             Case{"an empty file", 0, 0, 0, -60, 3, 0, 0},
         }) {
        MadeFile file = toneBetween(c.soundBegin, c.soundEnd, c.length);
        const auto trim = computeTrim(file, c.thresholdDb, c.maxSeconds);
        ASSERT_TRUE(trim) << c.what;
        EXPECT_EQ(std::llround(trim->start * kRate), c.start) << c.what;
        EXPECT_EQ(std::llround(trim->end * kRate), c.end) << c.what;
    }
}

TEST(Levels, ofMadeFiles) {
    const auto square = [](float level) {
        Samples samples;
        for (int n = 0; n < 30000; ++n) {
            samples.insert(samples.end(), {n % 2 == 0 ? level : -level, 0.0F});
        }
        return samples;
    };
    Samples damaged = square(0.5F);
    damaged[10] = std::numeric_limits<float>::quiet_NaN();
    damaged[20] = -std::numeric_limits<float>::infinity();
    struct Case {
        const char* what;
        Samples samples;
        double peak, rms;
    };
    for (const auto& [what, samples, peak, rms] : {
             Case{"a sine", tone(kRate, 441, kRate, 0.8), 0.8, 0.8 / std::sqrt(2)},
             Case{"one channel", square(0.5F), 0.5, 0.5 / std::sqrt(2)},
             Case{"over full scale", square(2.0F), 2, std::sqrt(2)},
             Case{"silence", Samples(2000), 0.0001, 0.0001},
             Case{"no numbers", damaged, 0.5, 0.5 * std::sqrt(29998 / 60000.0)},
             Case{"the peak behind the last whole vector",
                  {0, 0, 0, 0, 0, -1},
                  1,
                  std::sqrt(1 / 6.)},
         }) {
        MadeFile file(kRate, 2, samples, kRate); // may promise more than there is
        file.seek(500);
        const auto levels = computeLevels(file);
        ASSERT_TRUE(levels) << what;
        EXPECT_NEAR(levels->peak, peak, 1e-6) << what;
        EXPECT_NEAR(levels->rms, rms, 2e-5 * rms) << what;
    }
}

/// Ten milliseconds of noise at each beat.
MadeFile pulses(double bpm, double seconds, int rate) {
    std::mt19937 random(3);
    std::uniform_real_distribution<float> noise(-0.8F, 0.8F);
    Samples samples(static_cast<std::size_t>(seconds * rate));
    for (double beat = 0.1; beat < seconds - 0.02; beat += 60 / bpm) {
        const auto at = static_cast<std::ptrdiff_t>(beat * rate);
        std::generate_n(samples.begin() + at, rate / 100, [&] { return noise(random); });
    }
    return {rate, 1, std::move(samples)};
}

TEST(Tempo, ofSteadyPulses) {
    struct Case {
        double bpm, told;
    };
    for (const int rate : {44100, 96000}) {
        for (const auto& [bpm, told] :
             {Case{50, 100}, Case{128, 128}, Case{240, 120}, Case{90, 135}, Case{120, 120}}) {
            MadeFile file = pulses(bpm, 70, rate);
            const auto tempo = detectBPM(file);
            ASSERT_TRUE(tempo) << bpm << " at " << rate;
            EXPECT_NEAR(*tempo, told, 0.02 * told) << bpm << " at " << rate;
        }
    }
}

TEST(Tempo, ofKnownRecordings) {
    const std::filesystem::path corpus =
        std::filesystem::path(QUOREL_SOURCE_DIR) / ".." / "shared" / "corpus";
    if (!std::filesystem::exists(corpus)) {
        GTEST_SKIP() << "no corpus beside the project";
    }
    const struct {
        const char* path;
        double bpm;
    } cases[] = {
        {"worldwidejimmy+tonescope/public/audio/metronome_120bpm.mp3", 120},
        {"worldwidejimmy+tonescope/public/audio/metronome_120bpm_accent.mp3", 120},
        {"sonic-pi-net+sonic-pi/etc/samples/arovane_beat_a.flac", 130},
        {"worldwidejimmy+tonescope/public/audio/Backbeat.mp3", 130},
        {"worldwidejimmy+tonescope/public/audio/BassForGambling.mp3", 120.75},
        {"worldwidejimmy+tonescope/public/audio/DowntownBoogie.mp3", 105},
    };
    for (const auto& [path, bpm] : cases) {
        const auto file = AudioFile::open((corpus / path).string()).file;
        ASSERT_TRUE(file) << path;
        const auto tempo = detectBPM(*file);
        ASSERT_TRUE(tempo) << path;
        const double lag = 60.0 * file->sampleRate() / 1024 / bpm; // a whole number is looked for
        EXPECT_NEAR(*tempo, bpm, bpm * 0.5 / (lag - 0.5)) << path;
    }
}

TEST(Tempo, absentWithoutAClearBeat) {
    constexpr int64_t kFewest = 81 * 1024;
    MadeFile noise(kRate, 2, music(10 * kRate));
    MadeFile silence(kRate, 1, Samples(10 * kRate));
    MadeFile tooShort = pulses(128, (kFewest - 1024) / double(kRate), kRate);
    for (AudioFile* file : {&noise, &silence, &tooShort}) {
        EXPECT_FALSE(detectBPM(*file));
    }
    MadeFile longEnough = pulses(128, (kFewest + 0.5) / double(kRate), kRate);
    EXPECT_TRUE(detectBPM(longEnough));
    MadeFile minute = pulses(128, 60, kRate); // what follows the first minute counts for nothing
    Samples both(static_cast<std::size_t>(60 * kRate));
    minute.read(both.data(), 60 * kRate);
    const Samples rest = music(60 * kRate);
    both.insert(both.end(), rest.begin(), rest.end());
    MadeFile whole(kRate, 1, both);
    EXPECT_EQ(detectBPM(whole), detectBPM(minute));
}

TEST(TrackAnalysis, refusesWhatCannotBeMeasured) {
    const TemporaryFolder folder;
    for (const std::string& path :
         {folder.path("absent.flac"), folder.write("text.wav", "no sound"), folder.path("")}) {
        EXPECT_FALSE(computeTrim(path, -60, 3)) << path;
        EXPECT_FALSE(computeLevels(path)) << path;
        EXPECT_FALSE(detectBPM(path)) << path;
    }
    MadeFile empty(kRate, 2, {});
    EXPECT_FALSE(computeLevels(empty));
    for (const double seconds : {kInfinity, 1e300, std::nan("")}) {
        MadeFile file = toneBetween(0, 5000, 5000);
        EXPECT_FALSE(computeTrim(file, -60, seconds)) << seconds;
    }
    MadeFile cancelled = pulses(128, 10, kRate);
    cancelled.cancel();
    EXPECT_FALSE(computeTrim(cancelled, -60, 3));
    EXPECT_FALSE(computeLevels(cancelled));
    EXPECT_FALSE(detectBPM(cancelled));
}

TEST(TrackAnalysis, ofARealFile) {
    const TemporaryFolder folder;
    const TestSound sound(50001, 2, 16);
    const std::string path = folder.write("sound.wav", wavBytes(sound));
    MadeFile same(kRate, 2, sound.asFloat());
    EXPECT_EQ(computeLevels(path)->peak, computeLevels(same)->peak);
    EXPECT_EQ(computeLevels(path)->rms, computeLevels(same)->rms);
    EXPECT_EQ(computeTrim(path, -20, 0.5)->start, computeTrim(same, -20, 0.5)->start);
}

TEST(Normalisation, bringsTracksToTheTarget) {
    const auto linear = [](double db) { return std::pow(10.0, db / 20); };
    struct Case {
        const char* what;
        double peakDb, rmsDb, gainDb;
    };
    for (const auto& [what, peakDb, rmsDb, gainDb] : {
             Case{"at the target", -3, -16, 0},
             Case{"louder", -0.1, -9, -7},
             Case{"much louder", 0, -1, -12},
             Case{"quieter", -10, -20, 4},
             Case{"much quieter", -40, -60, 12},
             Case{"held back by its peak", -2, -20, 2},
             Case{"quiet with a peak over full scale", 1, -20, 0},
             Case{"loud with a peak over full scale", 3, -12, -4},
         }) {
        EXPECT_NEAR(20 * std::log10(normalisationGain(linear(peakDb), linear(rmsDb))), gainDb, 1e-9)
            << what;
    }
    EXPECT_EQ(normalisationGain(1, 0), 1);
    EXPECT_EQ(normalisationGain(1, std::nan("")), 1);
    EXPECT_EQ(normalisationGain(kInfinity, 0.1), 1);
}

} // namespace
} // namespace quorel::test
