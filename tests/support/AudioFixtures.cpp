#include "support/AudioFixtures.h"

#include "support/ChildProcess.h"

#include <unistd.h>

#include <bit>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <random>
#include <sstream>

namespace quorel::test {

namespace fs = std::filesystem;

std::string readFile(const std::string& path) {
    std::ostringstream bytes;
    bytes << std::ifstream(path, std::ios::binary).rdbuf();
    return bytes.str();
}

TestSound::TestSound(int64_t frames, int channelCount, int bitsPerSample)
    : channels(channelCount)
    , bits(bitsPerSample) {
    std::minstd_rand random(7);
    const double scale = std::ldexp(1.0, bits - 1) - 1;
    samples.reserve(static_cast<std::size_t>(frames * channels));
    for (int64_t n = 0; n < frames; ++n) {
        for (int c = 0; c < channels; ++c) {
            const double swell = 0.5 + 0.5 * std::sin(static_cast<double>(n) / (700.0 + 50 * c));
            const double noise = 2.0 * static_cast<double>(random()) / std::minstd_rand::max() - 1;
            samples.push_back(static_cast<int32_t>(scale * swell * noise));
        }
    }
}

std::vector<float> TestSound::asFloat() const {
    std::vector<float> floats;
    floats.reserve(samples.size());
    for (const int32_t sample : samples)
        floats.push_back(static_cast<float>(std::ldexp(static_cast<double>(sample), 1 - bits)));
    return floats;
}

namespace {

class ByteWriter {
  public:
    explicit ByteWriter(bool bigEndian)
        : bigEndian_(bigEndian) {}

    void number(uint64_t value, int count) {
        for (int i = 0; i < count; ++i) {
            const int shift = 8 * (bigEndian_ ? count - 1 - i : i);
            bytes += static_cast<char>(value >> shift & 0xFF);
        }
    }
    void numbers(std::initializer_list<std::pair<int64_t, int>> valuesAndBytes) {
        for (const auto& [value, count] : valuesAndBytes)
            number(static_cast<uint64_t>(value), count);
    }

    std::string bytes;

  private:
    bool bigEndian_;
};

std::string storedSamples(const TestSound& sound, int tag, int containerBytes, bool bigEndian) {
    ByteWriter writer(bigEndian);
    for (const int32_t sample : sound.samples) {
        const double real = std::ldexp(static_cast<double>(sample), 1 - sound.bits);
        if (tag == 3) {
            writer.number(std::bit_cast<uint32_t>(static_cast<float>(real)), 4);
        } else {
            const uint32_t upper = static_cast<uint32_t>(sample) << (32 - sound.bits);
            const uint32_t word = upper >> (32 - 8 * containerBytes);
            writer.number(containerBytes == 1 ? word ^ 0x80 : word, containerBytes);
        }
    }
    return writer.bytes;
}

std::string formatContent(const TestSound& sound, const WavRecipe& recipe, int containerBytes) {
    const int frameBytes = sound.channels * containerBytes;
    const bool isFull = recipe.mask || recipe.tag == 3; // all bits of the container are stated
    ByteWriter writer(recipe.form == "RIFX");
    writer.numbers({{recipe.mask ? 0xFFFE : recipe.tag, 2},
                    {sound.channels, 2},
                    {recipe.sampleRate, 4},
                    {recipe.sampleRate * frameBytes, 4},
                    {frameBytes, 2},
                    {isFull ? 8 * containerBytes : sound.bits, 2}});
    if (recipe.mask) {
        writer.numbers({{22, 2}, {sound.bits, 2}, {*recipe.mask, 4}, {recipe.tag, 2}});
        writer.bytes += std::string("\0\0\0\0\x10\0\x80\0\0\xAA\0\x38\x9B\x71", 14);
    }
    return writer.bytes;
}

} // namespace

std::string chunk(const std::string& name, const std::string& content) {
    ByteWriter size(false);
    size.number(content.size(), 4);
    return name + size.bytes + content + std::string(content.size() & 1, '\0');
}

std::string wavBytes(const TestSound& sound, const WavRecipe& recipe) {
    const bool bigEndian = recipe.form == "RIFX";
    const bool sizesApart = recipe.form == "RF64";
    const int containerBytes =
        recipe.containerBytes > 0 ? recipe.containerBytes : (sound.bits + 7) / 8;
    const std::string data = storedSamples(sound, recipe.tag, containerBytes, bigEndian);
    const std::string format = formatContent(sound, recipe, containerBytes);

    ByteWriter body(bigEndian);
    body.bytes = "WAVE";
    if (sizesApart) {
        body.bytes += "ds64";
        const int64_t frames = std::ssize(sound.samples) / sound.channels;
        body.numbers({{28, 4}, {0, 8}, {std::ssize(data), 8}, {frames, 8}, {0, 4}});
    }
    body.bytes += "fmt ";
    body.number(format.size(), 4);
    body.bytes += format + recipe.before + "data";
    body.number(recipe.dataSize.value_or(sizesApart ? 0xFFFFFFFF : data.size()), 4);
    body.bytes += data + std::string(data.size() & 1, '\0') + recipe.after;

    ByteWriter file(bigEndian);
    file.bytes = recipe.form;
    file.number(recipe.dataSize.value_or(sizesApart ? 0xFFFFFFFF : body.bytes.size()), 4);
    return file.bytes.append(body.bytes);
}

bool hasTool(const std::string& name) {
    const char* folders = std::getenv("PATH");
    std::istringstream path(folders != nullptr ? folders : "");
    for (std::string folder; std::getline(path, folder, ':');)
        if (::access((fs::path(folder) / name).c_str(), X_OK) == 0)
            return true;
    return false;
}

bool runTool(const std::vector<std::string>& command) {
    return hasTool(command.front()) && ChildProcess(command, "/dev/null").wait() == 0;
}

std::vector<float> readAll(AudioFile& file, int64_t limit) {
    constexpr int64_t kFrames = 1000; // no divisor of any usual block
    const auto channels = static_cast<std::size_t>(file.channels());
    std::vector<float> all;
    std::vector<float> some(kFrames * channels);
    while (limit > 0) {
        const int64_t wanted = std::min(kFrames, limit);
        const int64_t got = file.read(some.data(), wanted);
        all.insert(all.end(), some.begin(), some.begin() + got * file.channels());
        limit -= got;
        if (got < wanted)
            break;
    }
    return all;
}

} // namespace quorel::test
