#include "support/AudioFixtures.h"
#include "support/AudioMatrix.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <random>
#include <thread>

namespace quorel::test {

namespace {

class AudioFileTest : public testing::TestWithParam<const char*> {
  protected:
    void SetUp() override {
        const auto found = matrixFiles(QUOREL_AUDIO_MATRIX, GetParam());
        if (found.empty())
            GTEST_SKIP() << "scripts/make-audio-matrix has not run, or lacks the encoder";
        path = folder.write("copy", readFile(found.front().path));
        file = AudioFile::open(path).file;
        ASSERT_TRUE(file);
        whole = readAll(*AudioFile::open(path).file);
        frames = file->length();
        ASSERT_GT(frames, 0);
        ASSERT_EQ(static_cast<int64_t>(whole.size()), frames * 2);
    }
    /// Reads on to the end: all of it is the sound's own.
    int64_t playOn() {
        const int64_t from = file->position();
        const std::vector<float> got = readAll(*file);
        EXPECT_TRUE(std::equal(got.begin(), got.end(), whole.begin() + 2 * from));
        return static_cast<int64_t>(got.size()) / 2;
    }

    const TemporaryFolder folder{};
    std::string path;
    std::unique_ptr<AudioFile> file;
    std::vector<float> whole;
    int64_t frames = 0;
};

INSTANTIATE_TEST_SUITE_P(, AudioFileTest,
                         testing::Values("wav_s16le", "wav_adpcm_ms", "aiff_s24be", "caf_f32le",
                                         "caf_alac_st16", "flac_16", "mp3_vbr.mp3", "aac_plain",
                                         "m4a_aac.m4a", "m4a_alac16", "m4a_mp3"));

TEST_P(AudioFileTest, GoesOnWhereACancelledReadStopped) {
    file->cancel();
    file->seek(1000);
    std::vector<float> got(whole.size());
    EXPECT_EQ(file->read(got.data(), 100), 0);
    file->resume();
    file->seek(0);

    // Reads of the whole file, over and over, until one is caught in the middle.
    int64_t first = 0;
    for (int i = 0; i < 100 && first == 0; ++i) {
        std::jthread canceller([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(3));
            file->cancel();
        });
        do {
            file->seek(0);
            first = file->read(got.data(), frames);
        } while (first == frames);
        canceller.join();
        EXPECT_EQ(file->position(), first);
        file->resume();
    }
    ASSERT_GT(first, 0);
    EXPECT_EQ(file->read(got.data() + 2 * first, frames - first), frames - first);
    EXPECT_TRUE(got == whole);
}

TEST_P(AudioFileTest, SeeksExactlyAfterACancelledSeek) {
    std::minstd_rand random(9);
    std::vector<float> got(2 * 500);
    for (int i = 0; i < 400; ++i) {
        const int64_t target = 5000 + static_cast<int64_t>(random()) % (frames - 6000);
        std::atomic<bool> reading = false;
        std::jthread canceller([&, spins = random() % 60000] {
            while (!reading) {
            }
            for (volatile unsigned n = 0; n < spins;)
                n = n + 1;
            file->cancel();
        });
        file->seek(target);
        reading = true;
        file->read(got.data(), 1);
        canceller.join();
        file->resume();
        const int64_t near = target - static_cast<int64_t>(random()) % 5000;
        file->seek(near);
        ASSERT_EQ(file->read(got.data(), 500), 500);
        ASSERT_TRUE(std::equal(got.begin(), got.end(), whole.begin() + 2 * near)) << near;
    }
}

TEST_P(AudioFileTest, EndsWithWhatThereIs) {
    const auto size = std::filesystem::file_size(path);
    std::vector<float> some(2 * 1000);
    ASSERT_EQ(file->read(some.data(), 1000), 1000);
    std::ofstream(path, std::ios::app | std::ios::binary) << std::string(100000, 'x'); // it grows
    EXPECT_EQ(playOn(), frames - 1000);

    std::filesystem::resize_file(path, size / 2); // it shrinks
    file->seek(1000);
    std::vector<float> got(whole.size());
    const int64_t left = file->read(got.data(), frames);
    constexpr uintmax_t kReadAtOnce = 131072;
    EXPECT_TRUE(left < frames * 3 / 4 || size < kReadAtOnce) << left << " of " << frames;
    EXPECT_EQ(file->length(), frames);
    file->seek(frames * 9 / 10);
    file->read(got.data(), frames);

    std::filesystem::remove(path); // it vanishes: who has it open still has it
    file->seek(0);
    ASSERT_EQ(file->read(got.data(), 1000), 1000);
    EXPECT_TRUE(std::equal(got.begin(), got.begin() + 2000, whole.begin()));
}

} // namespace

} // namespace quorel::test
