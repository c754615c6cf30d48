#include "audio/decode/EncodedFiles.h"
#include "audio/decode/PcmFile.h"
#include "support/AudioMatrix.h"

#include <chrono>
#include <cmath>
#include <filesystem>
#include <thread>

namespace quorel::test {

namespace {

using Clock = std::chrono::steady_clock;
using Check = MatrixFile::Check;

// One channel's steps from frame to frame: what differs most between two places of a sound.
std::vector<float> steps(const std::vector<float>& interleaved, int channels, int channel) {
    const auto stride = static_cast<std::size_t>(channels);
    std::vector<float> result;
    for (auto i = static_cast<std::size_t>(channel) + stride; i < interleaved.size(); i += stride)
        result.push_back(interleaved[i] - interleaved[i - stride]);
    return result;
}

// How alike two sounds are, -1..1, where the first comes `lag` frames late.
double likeness(const std::vector<float>& late, const std::vector<float>& sound, int64_t lag) {
    constexpr int64_t kMost = 60000;
    const int64_t begin = std::max<int64_t>(0, -lag);
    const int64_t end = std::min({static_cast<int64_t>(sound.size()),
                                  static_cast<int64_t>(late.size()) - lag, begin + kMost});
    double product = 0;
    double one = 1e-30;
    double other = 1e-30;
    for (int64_t i = begin; i < end; ++i) {
        const auto a = static_cast<double>(late[static_cast<std::size_t>(i + lag)]);
        const auto b = static_cast<double>(sound[static_cast<std::size_t>(i)]);
        product += a * b;
        one += a * a;
        other += b * b;
    }
    return product / std::sqrt(one * other);
}

// A lossy codec's sound is in time to the frame, and every channel is in its place.
void expectLike(const std::vector<float>& played, const MatrixFile& file) {
    const std::vector<float> sound = readFloats(file.source);
    for (int channel = 0; channel < file.channels; ++channel) {
        const std::vector<float> ours = steps(played, file.channels, channel);
        const std::vector<float> theirs = steps(sound, file.channels, channel);
        int64_t best = 0;
        double most = -1;
        for (int64_t lag = file.lag - 24; lag <= file.lag + 24; ++lag) {
            const double found = likeness(ours, theirs, lag);
            if (found > most) {
                most = found;
                best = lag;
            }
        }
        // Of the bass channel a codec keeps what has too little treble to tell the time by.
        if (file.channels < 6 || channel != 3) {
            EXPECT_EQ(best, file.lag) << "channel " << channel;
            EXPECT_GT(most, 0.5) << "channel " << channel;
        }
        for (int other = 0; other < file.channels; ++other) {
            if (other != channel) {
                EXPECT_LT(likeness(ours, steps(sound, file.channels, other), file.lag), most)
                    << "channel " << channel << " is more like " << other;
            }
        }
    }
}

// The samples themselves, from the first frame to wherever a broken file ends.
void expectExact(const std::vector<float>& played, const MatrixFile& file) {
    const std::vector<float> sound = readFloats(file.source);
    ASSERT_LE(played.size(), sound.size());
    const auto apart = std::mismatch(played.begin(), played.end(), sound.begin());
    EXPECT_EQ(apart.first - played.begin(), static_cast<std::ptrdiff_t>(played.size()))
        << "first sample that differs";
}

void expectRefused(const MatrixFile& made) {
    double fastest = 1e9;
    for (int i = 0; i < 3; ++i) { // something else may have run during one
        const auto start = Clock::now();
        const auto opened = AudioFile::open(made.path);
        fastest = std::min(fastest, std::chrono::duration<double>(Clock::now() - start).count());
        EXPECT_FALSE(opened.file);
        EXPECT_FALSE(opened.error.empty());
    }
    EXPECT_LT(fastest, 0.05 * kPatience);
}

void expectAsMade(const MatrixFile& made) {
    const auto [file, error] = AudioFile::open(made.path);
    ASSERT_TRUE(file) << error;
    ASSERT_EQ(file->channels(), made.channels);
    EXPECT_EQ(file->sampleRate(), made.sampleRate);
    EXPECT_EQ(file->format().layout, rt::ChannelLayout::usual(made.channels));
    const std::vector<float> linear = readAll(*file);
    const int64_t played = static_cast<int64_t>(linear.size()) / made.channels;
    EXPECT_GE(played, made.fewest);
    EXPECT_LE(played, made.most);
    EXPECT_GE(file->length(), played);
    EXPECT_TRUE(!made.stated() || file->length() == made.fewest) << file->length();
    const bool canTell = dynamic_cast<const PcmFile*>(file.get()) != nullptr; // however it ends
    EXPECT_TRUE(!canTell || file->length() == played) << file->length();
    if (played == 0)
        return;
    if (made.check == Check::Exact) {
        expectExact(linear, made);
        const double bytes = file->dataRate() / 8 * static_cast<double>(played) / made.sampleRate;
        const auto size = static_cast<double>(std::filesystem::file_size(made.path));
        EXPECT_TRUE(!made.stated() || std::abs(bytes - size) < 0.02 * size + 10000) << bytes;
    } else if (made.check == Check::Like) {
        expectLike(linear, made);
    }
    // Three readers at once, each seeking for itself.
    std::vector<std::jthread> readers;
    for (unsigned seed = 1; seed <= 3; ++seed) {
        readers.emplace_back([&, seed] {
            SCOPED_TRACE(made.name);
            expectSeeksExact(*AudioFile::open(made.path).file, linear, seed);
        });
    }
}

class Matrix : public testing::TestWithParam<const char*> {};

TEST_P(Matrix, PlaysToTheFrame) {
    const std::vector<MatrixFile> files = matrixFiles(QUOREL_AUDIO_MATRIX, GetParam());
    if (files.empty())
        GTEST_SKIP() << "scripts/make-audio-matrix has not run, or lacks the encoder";
    for (const MatrixFile& file : files) {
        SCOPED_TRACE(file.name);
        if (file.check == Check::Refused)
            expectRefused(file);
        else
            expectAsMade(file);
    }
}

// The last one's name looks like an address.
INSTANTIATE_TEST_SUITE_P(, Matrix,
                         testing::Values("mp3_", "aac_", "m4a_", "m4b_", "flac_", "wav_", "aiff_",
                                         "caf_", "bad_", "http"));

} // namespace

} // namespace quorel::test
