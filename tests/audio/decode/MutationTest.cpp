// Whatever the bytes are, they are played or refused, soon, with little memory and no crash.
#include "support/Mutation.h"

#include "support/AudioFixtures.h"
#include "support/AudioMatrix.h"

#include <gtest/gtest.h>

#include <random>

namespace quorel::test {

namespace {

/// Whether a file opens; reads `frames` of it, and as many at some other places.
bool playOrRefuse(const std::string& path, int64_t frames) {
    static std::minstd_rand random(23);
    const auto [file, error] = AudioFile::open(path);
    EXPECT_EQ(file == nullptr, !error.empty()) << path;
    for (int i = 0; file && i < 3; ++i) {
        const std::size_t samples = readAll(*file, frames).size();
        EXPECT_LE(samples,
                  static_cast<std::size_t>(std::min(frames, file->length()) * file->channels()))
            << path;
        file->seek(static_cast<int64_t>(random() % 20000));
    }
    return file != nullptr;
}

TEST(Mutation, IsPlayedOrRefusedSoon) {
    std::vector<std::string> seeds;
    for (const MatrixFile& file : matrixFiles(QUOREL_AUDIO_SEEDS)) {
        if (file.check != MatrixFile::Check::Refused) {
            seeds.push_back(file.path);
            playOrRefuse(file.path, 20000); // all libraries are loaded before memory is measured
        }
    }
    if (seeds.empty())
        GTEST_SKIP() << "scripts/make-audio-matrix has not run, or lacks the encoders";
    readMutations(seeds, kPatience, [](const auto& path) { return playOrRefuse(path, 20000); });
}

TEST(Corpus, IsPlayedOrRefusedSoon) {
    const std::vector<std::string> files = corpusFiles();
    if (files.empty())
        GTEST_SKIP() << "no corpus beside the project";
    int sounding = 0;
    for (const std::string& path : files) {
        const double start = processorSeconds();
        const auto [file, error] = AudioFile::open(path);
        EXPECT_EQ(file == nullptr, !error.empty()) << path;
        sounding += file && !readAll(*file).empty() ? 1 : 0;
        EXPECT_LT(processorSeconds() - start, 2 * kPatience) << path;
    }
    EXPECT_GT(sounding, 100);
}

} // namespace

} // namespace quorel::test
