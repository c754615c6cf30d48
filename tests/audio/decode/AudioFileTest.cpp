#include "support/AudioFixtures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <random>
#include <thread>

namespace quorel::test {

namespace {

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// The two kinds of reader there are, on the same sound.
class AudioFileTest : public testing::TestWithParam<const char*> {
  protected:
    static constexpr int64_t kFrames = 330001;

    void SetUp() override { path = made(TestSound(kFrames, 2, 16)); }

    // Skips the test where the encoder is missing; the path is empty then.
    std::string made(const TestSound& sound) {
        std::string wav = folder.write("a.wav", wavBytes(sound));
        if (GetParam() == std::string("wav")) {
            return wav;
        }
        std::string flac = folder.path("a.flac");
        if (!runTool({"flac", "-s", "-f", "--no-padding", "--no-seektable", "-o", flac, wav})) {
            [] { GTEST_SKIP() << "flac is not installed"; }();
            return {};
        }
        return flac;
    }

    TemporaryFolder folder;
    std::string path;
};

TEST_P(AudioFileTest, ReadersOnManyThreadsDoNotDisturbEachOther) {
    const std::vector<float> sound = TestSound(kFrames, 2, 16).asFloat();
    std::atomic<int> wrong = 0;
    std::vector<std::jthread> threads;
    for (unsigned seed = 1; seed <= 4; ++seed) {
        threads.emplace_back([&, seed] {
            const auto file = AudioFile::open(path).file;
            std::minstd_rand random(seed);
            for (int i = 0; i < 40; ++i) {
                const auto target = static_cast<int64_t>(random()) % (kFrames - 3000);
                file->seek(target);
                const std::vector<float> got = readAll(*file, 3000);
                wrong += std::equal(got.begin(), got.end(), sound.begin() + 2 * target) &&
                                 got.size() == 6000
                             ? 0
                             : 1;
            }
        });
    }
    threads.clear();
    EXPECT_EQ(wrong, 0);
}

TEST_P(AudioFileTest, GoesOnWhereACancelledReadStopped) {
    const std::vector<float> sound = TestSound(kFrames, 2, 16).asFloat();
    const auto file = AudioFile::open(path).file;
    file->cancel();
    file->seek(1000);
    std::vector<float> got(sound.size());
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
            first = file->read(got.data(), kFrames);
        } while (first == kFrames);
        canceller.join();
        EXPECT_EQ(file->position(), first);
        file->resume();
    }
    ASSERT_GT(first, 0);
    EXPECT_EQ(file->read(got.data() + 2 * first, kFrames - first), kFrames - first);
    EXPECT_TRUE(got == sound);
}

// Whatever the bytes are, they are played or refused, soon and without a crash.
TEST_P(AudioFileTest, SurvivesAnyBytes) {
    const std::string whole = readFile(made(TestSound(9000, 2, 8)));
    std::minstd_rand random(11);
    const auto below = [&](std::size_t limit) { return random() % limit; };
    const auto start = Clock::now();
    int played = 0;
    for (int i = 0; i < 400; ++i) {
        std::string bytes = whole;
        for (std::size_t n = 1 + below(6); n > 0; --n) {
            // Half of the changes go into the head, where they hurt most.
            const std::size_t place = below(below(2) == 0 ? 80 : bytes.size());
            bytes[place] = static_cast<char>(below(3) == 0 ? 0xFF : below(256));
        }
        bytes.resize(below(4) == 0 ? below(bytes.size()) : bytes.size());
        const auto begin = Clock::now();
        const auto [file, error] = AudioFile::open(folder.write("b", bytes));
        ASSERT_EQ(file == nullptr, !error.empty());
        if (file) {
            ++played;
            for (int k = 0; k < 3; ++k) {
                ASSERT_LE(readAll(*file, 20000).size(), 20000U * rt::kMaxChannels);
                file->seek(static_cast<int64_t>(below(9000)));
            }
        }
        ASSERT_LT(secondsSince(begin), 1) << i;
    }
    EXPECT_GT(played, 100);
    EXPECT_LT(secondsSince(start), 60);
}

INSTANTIATE_TEST_SUITE_P(, AudioFileTest, testing::Values("wav", "flac"));

TEST(AudioFileOpen, RefusesWhatIsNoAudioFileAtOnce) {
    const TemporaryFolder folder;
    std::minstd_rand random(5);
    std::string noise;
    for (int i = 0; i < 300000; ++i) {
        noise += static_cast<char>(random() >> 8);
    }
    ASSERT_EQ(::mkfifo(folder.path("fifo.wav").c_str(), 0600), 0);
    const std::string locked = folder.write("locked.wav", wavBytes(TestSound(10, 2, 16)));
    ::chmod(locked.c_str(), 0);
    const struct {
        std::string path;
        const char* reason;
    } cases[] = {
        {folder.path("fifo.wav"), "not a regular file"},
        {folder.path(""), "not a regular file"},
        {"/dev/zero", "not a regular file"},
        {folder.path("absent.wav"), "No such file"},
        {folder.write("empty.wav", ""), "empty"},
        {folder.write("noise.flac", noise), "known format"},
        {folder.write("text.wav", "#EXTM3U\nhttp://localhost/a.mp3\n"), "known format"},
        {folder.write("tag.mp3", std::string("ID3\4\0\0\0\0\0\1\0", 11)), "known format"},
        {folder.write("head.flac", "fLaC" + noise), "without"},
    };
    for (const auto& refused : cases) {
        const auto start = Clock::now();
        const auto opened = AudioFile::open(refused.path);
        EXPECT_FALSE(opened.file) << refused.path;
        EXPECT_THAT(opened.error, testing::HasSubstr(refused.reason)) << refused.path;
        EXPECT_LT(secondsSince(start), 0.5) << refused.path;
    }
    if (::geteuid() != 0) { // to whom nothing is locked
        EXPECT_THAT(AudioFile::open(locked).error, testing::HasSubstr("denied"));
    }
}

} // namespace

} // namespace quorel::test
