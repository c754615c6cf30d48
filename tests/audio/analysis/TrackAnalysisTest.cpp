#include "audio/analysis/TrackAnalysis.h"

#include "support/AudioFixtures.h"
#include "support/MadeFile.h"
#include "support/Mutation.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <limits>
#include <map>

namespace quorel::test {
namespace {

constexpr int kRate = 44100;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// Silence with a tone between two frames, on the right channel only.
MadeFile toneBetween(int64_t begin, int64_t end, int64_t length) {
    Samples samples(static_cast<std::size_t>(2 * length));
    for (int64_t n = begin; n < end; ++n)
        samples[static_cast<std::size_t>(2 * n + 1)] = n % 2 == 0 ? 0.5F : -0.5F;
    return {kRate, 2, std::move(samples)};
}

TEST(Trim, cutsWholeQuietBlocks) {
    constexpr int64_t kLong = 10 * kRate;
    constexpr int64_t k3s = 3 * kRate;
    // The sound's place, the length; threshold in dB, most seconds; what is left. In frames.
    using Frames = int64_t;
    const std::tuple<const char*, Frames, Frames, Frames, double, double, Frames, Frames> cases[] =
        {
            {"sound from 0.5 s on", 22050, kLong, kLong, -60, 3, 21504, kLong},
            {"sound in the last frame of a block", 2047, kLong, kLong, -60, 3, 1024, kLong},
            {"sound in the first frame", 0, kLong, kLong, -60, 3, 0, kLong},
            {"more silence than may go", 5 * kRate, kLong, kLong, -60, 3, k3s, kLong},
            {"a quiet tail", 0, 8 * kRate, kLong, -60, 3, 0, 7 * kRate + 44 * 1024},
            {"a quiet tail longer than may go", 0, 5 * kRate, kLong, -60, 3, 0, kLong - k3s},
            {"all silent", 0, 0, kLong, -60, 6, 0, kLong},
            {"silent at both ends", 0, 0, kLong, -60, 3, k3s, kLong - k3s},
            {"a level at the threshold", 0, kLong, kLong, 20 * std::log10(0.5), 3, k3s,
             kLong - k3s},
            {"both ends of a short file", 5000, 6000, 9000, -60, 3, 4096, 6144},
            {"quiet up to where the scans cross", 0, 0, 6 * kRate, -60, 3, 0, 6 * kRate},
            {"nothing may go", 22050, 30000, kLong, -60, 0, 0, kLong},
            {"less than nothing may go", 22050, 30000, kLong, -60, -1, 0, kLong},
            {"end of the last block", 0, 8999, 9000, -60, 3, 0, 9000},
            {"an empty file", 0, 0, 0, -60, 3, 0, 0},
        };
    for (const auto& [what, begin, end, length, thresholdDb, maxSeconds, left, leftEnd] : cases) {
        MadeFile file = toneBetween(begin, end, length);
        const auto trim = computeTrim(file, thresholdDb, maxSeconds);
        ASSERT_TRUE(trim) << what;
        EXPECT_EQ(std::llround(trim->start * kRate), left) << what;
        EXPECT_EQ(std::llround(trim->end * kRate), leftEnd) << what;
    }
}

TEST(Levels, ofMadeFiles) {
    const auto square = [](float level) {
        Samples samples;
        for (int n = 0; n < 30000; ++n)
            samples.insert(samples.end(), {n % 2 == 0 ? level : -level, 0.0F});
        return samples;
    };
    Samples damaged = square(0.5F);
    damaged[10] = std::numeric_limits<float>::quiet_NaN();
    damaged[20] = -std::numeric_limits<float>::infinity();
    const std::tuple<const char*, Samples, double, double> cases[] = {
        {"a sine", tone(kRate, 441, kRate, 0.8), 0.8, 0.8 / std::sqrt(2)},
        {"one channel", square(0.5F), 0.5, 0.5 / std::sqrt(2)},
        {"over full scale", square(2.0F), 2, std::sqrt(2)},
        {"silence", Samples(2000), 0.0001, 0.0001},
        {"no numbers", damaged, 0.5, 0.5 * std::sqrt(29998 / 60000.0)},
        {"the peak behind the last whole vector", {0, 0, 0, 0, 0, -1}, 1, std::sqrt(1 / 6.)},
    };
    for (const auto& [what, samples, peak, rms] : cases) {
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
    for (const int rate : {44100, 96000}) {
        for (const auto& [bpm, told] :
             {std::pair{50, 100}, {128, 128}, {240, 120}, {90, 135}, {120, 120}}) {
            MadeFile file = pulses(bpm, 70, rate);
            const auto tempo = detectBPM(file);
            ASSERT_TRUE(tempo) << bpm << " at " << rate;
            EXPECT_NEAR(*tempo, told, 0.02 * told) << bpm << " at " << rate;
        }
    }
}

TEST(Tempo, ofKnownRecordings) {
    const std::map<std::string, double> tempos{
        {"metronome_120bpm.mp3", 120},   {"metronome_120bpm_accent.mp3", 120},
        {"arovane_beat_a.flac", 130},    {"Backbeat.mp3", 130},
        {"BassForGambling.mp3", 120.75}, {"DowntownBoogie.mp3", 105},
    };
    const std::vector<std::string> files = corpusFiles();
    if (files.empty())
        GTEST_SKIP() << "no corpus beside the project";
    for (const std::string& path : files) {
        const auto known = tempos.find(std::filesystem::path(path).filename());
        if (known == tempos.end())
            continue;
        const double bpm = known->second;
        const auto file = AudioFile::open(path).file;
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
    for (AudioFile* file : {&noise, &silence, &tooShort})
        EXPECT_FALSE(detectBPM(*file));
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
    const std::tuple<const char*, double, double, double> cases[] = {
        {"at the target", -3, -16, 0},
        {"louder", -0.1, -9, -7},
        {"much louder", 0, -1, -12},
        {"quieter", -10, -20, 4},
        {"much quieter", -40, -60, 12},
        {"held back by its peak", -2, -20, 2},
        {"quiet with a peak over full scale", 1, -20, 0},
        {"loud with a peak over full scale", 3, -12, -4},
    };
    for (const auto& [what, peakDb, rmsDb, gainDb] : cases) {
        EXPECT_NEAR(20 * std::log10(normalisationGain(linear(peakDb), linear(rmsDb))), gainDb, 1e-9)
            << what;
    }
    EXPECT_EQ(normalisationGain(1, 0), 1);
    EXPECT_EQ(normalisationGain(1, std::nan("")), 1);
    EXPECT_EQ(normalisationGain(kInfinity, 0.1), 1);
}

} // namespace
} // namespace quorel::test
