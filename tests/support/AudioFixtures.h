#pragma once

#include "audio/decode/AudioFile.h"
#include "support/TestFolder.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quorel::test {

/// By how much longer than usual things may take: sanitizers slow everything down.
#ifdef QUOREL_SANITIZED
inline constexpr int kPatience = 10;
#else
inline constexpr int kPatience = 1;
#endif

/// A folder of its own that goes with the object, for files named and written as standard strings.
class TemporaryFolder {
  public:
    std::string path(const std::string& name) const {
        return folder_.path(QByteArray::fromStdString(name)).toStdString();
    }
    /// Writes a file there and returns its path.
    std::string write(const std::string& name, const std::string& bytes) const {
        return folder_.write(QByteArray::fromStdString(name), QByteArray::fromStdString(bytes))
            .toStdString();
    }
    std::vector<std::string> names(const char* below = "") const { return folder_.names(below); }

  private:
    TestFolder folder_;
};

std::string readFile(const std::string& path);

/// Interleaved integer samples of `bits` bits, the same ones at every run: noise whose loudness
/// swells differently in each channel, so that no two places and no two channels are alike.
struct TestSound {
    int channels = 2;
    int bits = 16;
    std::vector<int32_t> samples;

    TestSound(int64_t frames, int channelCount, int bitsPerSample);
    /// The samples as any correct reader gives them: divided by 2^(bits-1).
    std::vector<float> asFloat() const;
};

/// How a WAV file is written; the default is plain 16-bit stereo. Sample bits come from the sound.
struct WavRecipe {
    std::string form = "RIFF"; ///< or RIFX (big-endian), RF64 (sizes in a ds64 chunk)
    int tag = 1;               ///< 1 integers, 3 floats, others as a lie
    int sampleRate = 44100;
    int containerBytes = 0;                ///< bytes of a sample; 0: as many as the bits need
    std::optional<uint32_t> mask = {};     ///< makes the format chunk an extensible one
    std::optional<uint32_t> dataSize = {}; ///< stated for the right one, and as the file's size
    std::string before = {};               ///< chunks between format and data
    std::string after = {};                ///< chunks behind the data
};

std::string wavBytes(const TestSound& sound, const WavRecipe& recipe = {});

/// A RIFF chunk, padded to an even length.
std::string chunk(const std::string& name, const std::string& content);

/// Runs a program to its end. False when it is not installed or fails.
bool runTool(const std::vector<std::string>& command);
bool hasTool(const std::string& name);

/// Everything from the current position on, at most `limit` frames.
std::vector<float> readAll(AudioFile& file, int64_t limit = INT64_MAX);

} // namespace quorel::test
