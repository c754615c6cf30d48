#pragma once

#include "support/AudioFixtures.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace quorel::test {

/// Of files that ffmpeg encodes; skipped where it is not installed.
class EncodedFileTest : public testing::Test {
  protected:
    void SetUp() override {
        if (!hasTool("ffmpeg"))
            GTEST_SKIP() << "ffmpeg is not installed";
    }
    TemporaryFolder folder;
};

/// Encodes a sound with ffmpeg into `name`, whose ending tells the container, and returns the
/// bytes.
inline std::string encodeWith(const TemporaryFolder& folder, const std::string& name,
                              const TestSound& sound, const std::vector<std::string>& options) {
    const std::string wav = folder.write("in.wav", wavBytes(sound));
    std::vector<std::string> command{"ffmpeg", "-v", "error", "-nostdin",
                                     "-y",     "-i", wav,     "-bitexact"};
    command.insert(command.end(), options.begin(), options.end());
    command.push_back(folder.path(name));
    EXPECT_TRUE(runTool(command));
    return readFile(folder.path(name));
}

/// Reads of odd lengths at 30 places, also near both ends, where a pre-roll is cut short and
/// padding begins, against a linear decode; and what lies behind the end.
inline void expectSeeksExact(AudioFile& file, const std::vector<float>& linear, unsigned seed = 5) {
    const int64_t length = std::ssize(linear) / file.channels();
    std::minstd_rand random(seed);
    for (int i = 0; i < 30; ++i) {
        const int64_t range = i % 5 == 1 ? std::min<int64_t>(length, 3000) : length;
        const int64_t within = static_cast<int64_t>(random()) % range;
        const int64_t target =
            i % 5 == 2 ? std::max<int64_t>(0, length - 1 - within % 3000) : within;
        const int64_t wanted = std::min(1 + static_cast<int64_t>(random()) % 3000, length - target);
        ASSERT_TRUE(file.seek(target));
        ASSERT_EQ(file.position(), target);
        const std::vector<float> got = readAll(file, wanted);
        ASSERT_EQ(std::ssize(got), wanted * file.channels()) << target;
        ASSERT_TRUE(std::equal(got.begin(), got.end(), linear.begin() + target * file.channels()))
            << "after seeking to " << target;
    }
    const int64_t nothing = std::max(length, file.length() - 100); // where a broken file is silent
    for (const int64_t end : {nothing, file.length(), file.length() + 5}) {
        EXPECT_TRUE(file.seek(end));
        EXPECT_EQ(file.position(), std::min(end, file.length()));
        EXPECT_TRUE(readAll(file).empty());
    }
    EXPECT_TRUE(file.seek(-7));
    EXPECT_EQ(file.position(), 0);
}

} // namespace quorel::test
