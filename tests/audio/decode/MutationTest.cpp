#include "support/AudioFixtures.h"
#include "support/AudioMatrix.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <random>

namespace quorel::test {

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// The most memory that the process has ever had, in bytes.
int64_t peakMemory() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return int64_t{usage.ru_maxrss} * 1024;
}

// Frames played of a file opened and read to its end; -1 when it is refused.
int64_t playOrRefuse(const std::string& path) {
    const auto [file, error] = AudioFile::open(path);
    EXPECT_EQ(file == nullptr, !error.empty());
    if (!file) {
        return -1;
    }
    std::vector<float> some(static_cast<std::size_t>(4096 * file->channels()));
    int64_t frames = 0;
    while (const int64_t got = file->read(some.data(), 4096)) {
        frames += got;
    }
    EXPECT_LE(frames, file->length());
    return frames;
}

// One to seven changes, most of them where the headers are, or the end cut off.
std::string mutated(std::string bytes, std::minstd_rand& random) {
    const auto below = [&](std::size_t limit) {
        return random() % std::max<std::size_t>(1, limit);
    };
    for (std::size_t n = 1 + below(7); n > 0 && !bytes.empty(); --n) {
        const std::size_t reach = below(3) == 0   ? bytes.size()
                                  : below(2) == 0 ? std::min<std::size_t>(100, bytes.size())
                                                  : std::min<std::size_t>(1500, bytes.size());
        // An index such as MP4's may lie at the end.
        const std::size_t place = below(4) == 0 ? bytes.size() - 1 - below(reach) : below(reach);
        switch (below(5)) {
        case 0:
            bytes[place] = static_cast<char>(0xFF);
            break;
        case 1: // a size of four bytes that is far too large
            bytes.replace(place, 4, std::string("\x7F\xFF\xFF\xF0", 4));
            break;
        case 2:
            bytes.erase(place, below(20));
            break;
        case 3:
            bytes.insert(place, bytes.substr(below(bytes.size()), below(200)));
            break;
        default:
            bytes[place] = static_cast<char>(below(256));
        }
    }
    bytes.resize(below(5) == 0 ? below(bytes.size()) : bytes.size());
    return bytes;
}

// Whatever the bytes are, they are played or refused, soon, with little memory and no crash.
// QUOREL_MUTATIONS says how many files are tried.
TEST(Mutation, IsPlayedOrRefusedSoon) {
    std::vector<MatrixFile> seeds;
    for (const MatrixFile& file : matrixFiles(QUOREL_AUDIO_SEEDS)) {
        if (file.check != MatrixFile::Check::Refused) {
            seeds.push_back(file);
        }
    }
    if (seeds.empty()) {
        GTEST_SKIP() << "scripts/make-audio-matrix has not run, or lacks the encoders";
    }
    for (const MatrixFile& file : seeds) { // all libraries are loaded before memory is measured
        playOrRefuse(file.path);
    }
    const char* wanted = std::getenv("QUOREL_MUTATIONS");
    const int count = wanted != nullptr ? std::atoi(wanted) : 300;
    ASSERT_GT(count, 0);
    const TemporaryFolder folder;
    std::minstd_rand random(23);
    const int64_t before = peakMemory();
    int played = 0;
    for (int i = 0; i < count; ++i) {
        const MatrixFile& seed = seeds[random() % seeds.size()];
        const std::string path = folder.write("mutated", mutated(readFile(seed.path), random));
        const auto start = Clock::now();
        const auto opened = AudioFile::open(path);
        ASSERT_EQ(opened.file == nullptr, !opened.error.empty());
        for (int k = 0; opened.file && k < 3; ++k) {
            const auto most = static_cast<std::size_t>(opened.file->channels()) * 20000;
            ASSERT_LE(readAll(*opened.file, 20000).size(), most);
            opened.file->seek(static_cast<int64_t>(random() % 20000));
        }
        played += opened.file ? 1 : 0;
        if (const double taken = secondsSince(start); taken > kPatience) {
            const std::string kept = fs::temp_directory_path() / "quorel-slow-mutation";
            fs::copy_file(path, kept, fs::copy_options::overwrite_existing);
            FAIL() << "mutation " << i << " of " << seed.name << " took " << taken
                   << " s, and is kept as " << kept;
        }
    }
    EXPECT_GT(played, count / 4);
#ifndef QUOREL_SANITIZED
    EXPECT_LT(peakMemory() - before, 64 << 20);
#else
    static_cast<void>(before);
#endif
}

TEST(Corpus, IsPlayedOrRefusedSoon) {
    const fs::path corpus = fs::path(QUOREL_SOURCE_DIR) / ".." / "shared" / "corpus";
    if (!fs::exists(corpus)) {
        GTEST_SKIP() << "no corpus beside the project";
    }
    int sounding = 0;
    for (const auto& entry : fs::recursive_directory_iterator(corpus)) {
        if (!entry.is_regular_file()) {
            continue;
        }
        SCOPED_TRACE(entry.path().string());
        const auto start = Clock::now();
        sounding += playOrRefuse(entry.path().string()) > 0 ? 1 : 0;
        EXPECT_LT(secondsSince(start), 2 * kPatience);
    }
    RecordProperty("sounding", sounding);
    EXPECT_GT(sounding, 100);
}

} // namespace

} // namespace quorel::test
