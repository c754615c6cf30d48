#include "support/Mutation.h"

#include "support/AudioFixtures.h"
#include "support/AudioMatrix.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace quorel::test {

namespace {

namespace fs = std::filesystem;

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

// Whatever the bytes are, they are played or refused, soon, with little memory and no crash.
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
    const int count = mutationCount();
    ASSERT_GT(count, 0);
    const TemporaryFolder folder;
    std::minstd_rand random(23);
    const int64_t before = peakMemory();
    int played = 0;
    for (int i = 0; i < count; ++i) {
        const MatrixFile& seed = seeds[random() % seeds.size()];
        const std::string path = folder.write("mutated", mutated(readFile(seed.path), random));
        const auto start = std::chrono::steady_clock::now();
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
        const auto start = std::chrono::steady_clock::now();
        sounding += playOrRefuse(entry.path().string()) > 0 ? 1 : 0;
        EXPECT_LT(secondsSince(start), 2 * kPatience);
    }
    RecordProperty("sounding", sounding);
    EXPECT_GT(sounding, 100);
}

} // namespace

} // namespace quorel::test
