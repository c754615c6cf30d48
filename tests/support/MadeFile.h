#pragma once

#include "audio/decode/AudioFile.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>
#include <vector>

namespace quorel::test {

/// A file made of frames in memory. `claimed` may promise more than there is.
class MadeFile final : public AudioFile {
  public:
    MadeFile(int sampleRate, int channels, std::vector<float> samples, int64_t claimed = -1)
        : samples_(std::move(samples)) {
        format_ = {sampleRate, rt::ChannelLayout::usual(channels)};
        length_ = claimed >= 0 ? claimed : present();
    }
    double dataRate() const override { return 0; }
    int64_t position() const override { return position_; }
    bool seek(int64_t frame) override {
        position_ = std::clamp<int64_t>(frame, 0, length());
        return true;
    }
    int64_t read(float* out, int64_t frames) override {
        frames = std::clamp<int64_t>(present() - position_, 0, frames);
        std::copy_n(samples_.begin() + position_ * channels(), frames * channels(), out);
        position_ += frames;
        return frames;
    }

  private:
    int64_t present() const { return static_cast<int64_t>(samples_.size()) / channels(); }

    std::vector<float> samples_;
    int64_t position_ = 0;
};

using Samples = std::vector<float>;

/// Stereo frames that can be told from each other: left (n + 1) / 2^20, right its negative.
inline Samples ramp(int64_t frames, int64_t first = 0) {
    Samples samples;
    for (int64_t n = first; n < first + frames; ++n) {
        const float value = static_cast<float>(n + 1) / 1048576.0F;
        samples.insert(samples.end(), {value, -value});
    }
    return samples;
}

/// The frame number that a sample of the left stands for behind the chain at rest, whose limiter
/// takes 0.8 dB; -1 for silence.
inline int64_t rampFrame(float sample) {
    return std::llround(static_cast<double>(sample) / std::pow(10.0, -0.8 / 20.0) * 1048576.0) - 1;
}

inline Samples tone(int64_t frames, double hertz, int rate, double level = 0.5) {
    Samples samples;
    for (int64_t n = 0; n < frames; ++n) {
        const auto value = static_cast<float>(
            level * std::sin(2 * std::numbers::pi * hertz * static_cast<double>(n) / rate));
        samples.insert(samples.end(), {value, value});
    }
    return samples;
}

/// Broadband, so that a misplaced or missing frame shows at once.
inline Samples music(int64_t frames) {
    std::mt19937 random(7);
    std::uniform_real_distribution<float> noise(-0.1F, 0.1F);
    Samples samples = tone(frames, 997, 44100, 0.4);
    for (float& sample : samples)
        sample += noise(random);
    return samples;
}

inline Samples part(const Samples& whole, int64_t from, int64_t to) {
    return {whole.begin() + 2 * from, whole.begin() + 2 * to};
}

} // namespace quorel::test
