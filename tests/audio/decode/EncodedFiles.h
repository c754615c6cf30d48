#pragma once

#include "support/AudioFixtures.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace quorel::test {

/// Encodes a sound with ffmpeg into `name`, whose ending tells the container, and returns the
/// bytes.
inline std::string encodeWith(const TemporaryFolder& folder, const std::string& name,
                              const TestSound& sound, const std::vector<std::string>& options,
                              const WavRecipe& recipe = {}) {
    const std::string wav = folder.write("in.wav", wavBytes(sound, recipe));
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
    EXPECT_TRUE(file.seek(file.length() + 5));
    EXPECT_EQ(file.position(), file.length());
    EXPECT_TRUE(readAll(file).empty());
}

/// How alike two sounds are, 0..1, without any shift in time: of noise, almost 0 when one is a
/// frame late or two channels are swapped.
inline double likeness(const std::vector<float>& one, const std::vector<float>& other) {
    double product = 0;
    double energy = 1e-30;
    double otherEnergy = 1e-30;
    for (std::size_t i = 0; i < std::min(one.size(), other.size()); ++i) {
        product += static_cast<double>(one[i]) * static_cast<double>(other[i]);
        energy += static_cast<double>(one[i]) * static_cast<double>(one[i]);
        otherEnergy += static_cast<double>(other[i]) * static_cast<double>(other[i]);
    }
    return product / std::sqrt(energy * otherEnergy);
}

} // namespace quorel::test
