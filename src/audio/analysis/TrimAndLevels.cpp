#include "audio/analysis/BlockReader.h"
#include "audio/analysis/SampleMeasures.h"
#include "audio/analysis/TrackAnalysis.h"

#include <algorithm>
#include <cmath>

namespace quorel {

namespace {

constexpr int64_t kTrimBlock = 1024;
/// Small enough for the decoded block to be still in the cache when it is measured.
constexpr int64_t kLevelsBlock = 8192;
/// Stands in for digital silence, whose level in decibels would be no number.
constexpr double kSilence = 0.0001;

/// The first frame of the first block above the threshold, or as far as it was quiet.
int64_t endOfHead(AudioFile& file, float threshold, int64_t limit) {
    BlockReader blocks(file, kTrimBlock);
    int64_t head = 0;
    for (int64_t position = 0; position < limit; position += kTrimBlock) {
        const auto block = blocks.next();
        if (block.empty()) {
            break;
        }
        if (peakOf(block) > threshold) {
            return position;
        }
        head = std::min(position + kTrimBlock, limit);
    }
    return head;
}

/// The end of the last block above the threshold from `start` on, or `start`.
int64_t startOfTail(AudioFile& file, float threshold, int64_t start) {
    BlockReader blocks(file, kTrimBlock);
    int64_t tail = start;
    for (int64_t position = start; position < file.length(); position += kTrimBlock) {
        const auto block = blocks.next();
        if (block.empty()) {
            break;
        }
        if (peakOf(block) > threshold) {
            tail = position + kTrimBlock;
        }
    }
    return std::min(tail, file.length());
}

/// Absent where it cannot be counted in 64 bits, or is not a number.
std::optional<int64_t> framesIn(double seconds, const AudioFile& file) {
    const double frames = std::max(seconds, 0.0) * file.sampleRate();
    return frames < 9.2e18 ? std::optional(static_cast<int64_t>(frames)) : std::nullopt;
}

float thresholdOf(double db) {
    return static_cast<float>(std::pow(10.0, db / 20.0));
}

Trim secondsOf(int64_t head, int64_t tail, const AudioFile& file) {
    const double rate = file.sampleRate();
    return {static_cast<double>(head) / rate, static_cast<double>(tail) / rate};
}

} // namespace

std::optional<Trim> computeTrim(AudioFile& file, double thresholdDb, double maxTrimSec) {
    const auto maxFrames = framesIn(maxTrimSec, file);
    if (!maxFrames || !file.seek(0)) {
        return std::nullopt;
    }
    const float threshold = thresholdOf(thresholdDb);
    const int64_t length = file.length();
    const int64_t head = endOfHead(file, threshold, std::min(*maxFrames, length));
    const int64_t tailStart = std::max<int64_t>(length - *maxFrames, 0);
    if (!file.seek(tailStart)) {
        return std::nullopt;
    }
    const int64_t tail = startOfTail(file, threshold, tailStart);
    if (file.cancelled()) {
        return std::nullopt;
    }
    return tail <= head ? secondsOf(0, length, file) : secondsOf(head, tail, file);
}

std::optional<Trim> computeTrimOfHead(AudioFile& file, double thresholdDb, double maxTrimSec) {
    const auto maxFrames = framesIn(maxTrimSec, file);
    if (!maxFrames || !file.seek(0)) {
        return std::nullopt;
    }
    const int64_t length = file.length();
    const int64_t head = endOfHead(file, thresholdOf(thresholdDb), std::min(*maxFrames, length));
    if (file.cancelled()) {
        return std::nullopt;
    }
    return secondsOf(head == length ? 0 : head, length, file);
}

std::optional<Levels> computeLevels(AudioFile& file) {
    if (!file.seek(0)) {
        return std::nullopt;
    }
    BlockReader blocks(file, kLevelsBlock);
    float peak = 0;
    double squares = 0;
    double samples = 0;
    for (auto block = blocks.next(); !block.empty(); block = blocks.next()) {
        peak = std::max(peak, peakOf(block));
        squares += sumOfSquares(block);
        samples += static_cast<double>(block.size());
    }
    if (samples == 0 || file.cancelled()) {
        return std::nullopt;
    }
    const double rms = std::sqrt(squares / samples);
    return Levels{peak > 0 ? static_cast<double>(peak) : kSilence, rms > 0 ? rms : kSilence};
}

double normalisationGain(double peak, double rms) noexcept {
    constexpr double kTargetDb = -16;
    constexpr double kLimitDb = 12;
    if (!std::isfinite(peak) || !std::isfinite(rms) || rms <= 0) {
        return 1;
    }
    const double db = std::clamp(kTargetDb - 20 * std::log10(rms), -kLimitDb, kLimitDb);
    const double gain = std::pow(10.0, db / 20);
    return gain > 1 && peak * gain > 1 ? std::max(1 / peak, 1.0) : gain;
}

std::optional<Trim> computeTrim(const std::string& path, double thresholdDb, double maxTrimSec) {
    const auto opened = AudioFile::open(path);
    return opened.file ? computeTrim(*opened.file, thresholdDb, maxTrimSec) : std::nullopt;
}

std::optional<Levels> computeLevels(const std::string& path) {
    const auto opened = AudioFile::open(path);
    return opened.file ? computeLevels(*opened.file) : std::nullopt;
}

} // namespace quorel
