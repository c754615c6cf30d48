// The tempo from the periodicity of a track's onsets: the loudness of short blocks, the rises in
// it, their autocorrelation, and the multiple of the best lag's tempo that people would tap.
#include "audio/analysis/BlockReader.h"
#include "audio/analysis/SampleMeasures.h"
#include "audio/analysis/TrackAnalysis.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <vector>

namespace quorel {

namespace {

constexpr int64_t kBlock = 1024;
constexpr int64_t kSeconds = 60;
constexpr std::size_t kFewestBlocks = 81;
constexpr double kSlowest = 40;   // BPM that are looked for
constexpr double kFastest = 200;  // likewise
constexpr double kLowestTap = 60; // BPM that are told, if any multiple lies there
constexpr double kUsual = 120;
constexpr double kClearness = 1.8; // of the best lag beside the average one

/// The RMS of each block of the first minute.
std::vector<double> energyEnvelope(AudioFile& file) {
    const int64_t frames = std::min(file.length(), kSeconds * file.sampleRate());
    BlockReader blocks(file, kBlock);
    std::vector<double> envelope;
    for (int64_t position = 0; position < frames; position += kBlock) {
        const auto block = blocks.next();
        if (block.empty()) {
            break;
        }
        envelope.push_back(std::sqrt(sumOfSquares(block) / static_cast<double>(block.size())));
    }
    return envelope;
}

/// How much louder each block is than the one before it.
std::vector<double> onsetsOf(const std::vector<double>& envelope) {
    std::vector<double> onsets(envelope.size());
    for (std::size_t i = 1; i < envelope.size(); ++i) {
        onsets[i] = std::max(envelope[i] - envelope[i - 1], 0.0);
    }
    return onsets;
}

/// The lag in minLag..maxLag at which the onsets repeat, if they clearly do.
std::optional<std::size_t> clearestLag(const std::vector<double>& onsets, std::size_t minLag,
                                       std::size_t maxLag) {
    std::size_t bestLag = minLag;
    double best = -1;
    double sum = 0;
    for (std::size_t lag = minLag; lag <= maxLag; ++lag) {
        const auto shifted = onsets.begin() + static_cast<std::ptrdiff_t>(lag);
        const double likeness = std::transform_reduce(shifted, onsets.end(), onsets.begin(), 0.0);
        sum += likeness;
        if (likeness > best) {
            best = likeness;
            bestLag = lag;
        }
    }
    const double mean = sum / static_cast<double>(maxLag - minLag + 1);
    if (mean <= 0 || best / mean <= kClearness) {
        return std::nullopt;
    }
    return bestLag;
}

/// The simple multiple of a tempo that lies closest to the usual one.
double tapped(double base) {
    const std::array candidates{base,     base * 2,     base * 0.5, base * 3,
                                base / 3, base * 2 / 3, base * 1.5};
    std::optional<double> chosen;
    for (const double bpm : candidates) {
        if (bpm >= kLowestTap && bpm <= kFastest &&
            (!chosen || std::abs(bpm - kUsual) < std::abs(*chosen - kUsual))) {
            chosen = bpm;
        }
    }
    return chosen.value_or(base);
}

} // namespace

std::optional<double> detectBPM(AudioFile& file) {
    if (file.sampleRate() <= 0 || !file.seek(0)) {
        return std::nullopt;
    }
    const std::vector<double> envelope = energyEnvelope(file);
    if (envelope.size() < kFewestBlocks || file.cancelled()) {
        return std::nullopt;
    }
    const double blocksPerMinute = static_cast<double>(file.sampleRate()) / kBlock * 60;
    const auto minLag = static_cast<std::size_t>(std::max(blocksPerMinute / kFastest, 1.0));
    const auto maxLag = static_cast<std::size_t>(blocksPerMinute / kSlowest);
    if (maxLag >= envelope.size() || maxLag <= minLag) {
        return std::nullopt;
    }
    const auto lag = clearestLag(onsetsOf(envelope), minLag, maxLag);
    return lag ? std::optional(tapped(blocksPerMinute / static_cast<double>(*lag))) : std::nullopt;
}

std::optional<double> detectBPM(const std::string& path) {
    const auto opened = AudioFile::open(path);
    return opened.file ? detectBPM(*opened.file) : std::nullopt;
}

} // namespace quorel
