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

/// Reads of odd lengths at 30 places, with some pairs near each other, against a linear decode.
inline void expectSameFromAnywhere(AudioFile& file, const std::vector<float>& linear) {
    std::minstd_rand random(5);
    const int64_t channels = file.channels();
    for (int i = 0; i < 30; ++i) {
        const int64_t target = i < 3 ? i * 700 : static_cast<int64_t>(random()) % file.length();
        const int64_t limit = i % 3 == 0 ? 5000 : 137;
        ASSERT_TRUE(file.seek(target));
        EXPECT_EQ(file.position(), target);
        const std::vector<float> got = readAll(file, limit);
        ASSERT_EQ(got.size(),
                  static_cast<std::size_t>(std::min(limit, file.length() - target) * channels));
        ASSERT_TRUE(std::equal(got.begin(), got.end(), linear.begin() + target * channels))
            << "after seeking to " << target;
    }
}

} // namespace quorel::test
