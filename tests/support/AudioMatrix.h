#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace quorel::test {

/// A line of the manifest that scripts/make-audio-matrix writes, where its columns are explained.
struct MatrixFile {
    enum class Check { Refused, Length, Like, Exact };

    std::string name;
    std::string path;
    Check check = Check::Refused;
    int64_t fewest = 0; ///< frames, of what is not refused
    int64_t most = 0;
    int64_t lag = 0; ///< frames
    int channels = 0;
    int sampleRate = 0;
    std::string source; ///< path of its samples

    bool stated() const { return fewest == most; }
};

/// The files whose names begin so. Empty where the folder has not been made (the test run does
/// that) or what encodes them is not installed.
std::vector<MatrixFile> matrixFiles(const std::string& folder, const std::string& prefix = {});

/// Interleaved 32-bit floats as a file holds them.
std::vector<float> readFloats(const std::string& path);

} // namespace quorel::test
