#pragma once

#include "audio/OfflineRenderer.h"
#include "support/RealtimeGuard.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
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

inline Samples tone(int64_t frames, double hertz, int rate, double level = 0.5) {
    Samples samples;
    for (int64_t n = 0; n < frames; ++n) {
        const auto value = static_cast<float>(
            level * std::sin(2 * std::numbers::pi * hertz * static_cast<double>(n) / rate));
        samples.insert(samples.end(), {value, value});
    }
    return samples;
}

/// The engine on the manual clock, rendering into memory. The parameter is the output's latency, so
/// that what is rendered cannot be mistaken for what is heard.
class EngineTest : public testing::TestWithParam<int> {
  protected:
    static constexpr int kRate = 48000;

    EngineTest() {
        engine.onTrackEnded = [this] { ended.push_back(heard()); };
        engine.onGaplessPromotion = [this](QUuid id) { promoted.emplace_back(id, heard()); };
        engine.onQueueDiscarded = [this] { ++discarded; };
        engine.onNeedPreload = [this] { ++preloadsAsked; };
    }

    static std::shared_ptr<AudioFile> stereo(Samples samples, int rate = kRate) {
        return std::make_shared<MadeFile>(rate, 2, std::move(samples));
    }
    static TrackToPlay track(std::shared_ptr<AudioFile> file, double start = 0,
                             std::optional<double> end = {}) {
        return {std::move(file), QUuid::createUuid(), start, end, 1.0};
    }
    bool load(const TrackToPlay& wanted, int fadeInMs = 0) {
        return !engine.load(wanted, fadeInMs).has_value();
    }
    void render(double seconds) { offline.render(std::llround(seconds * kRate), out); }
    void renderFrames(int64_t frames) { offline.render(frames, out); }

    /// Frames heard since the beginning, at the present moment.
    int64_t heard() { return offline.position() - GetParam() - engine.latencyFrames(); }
    /// Left sample of the frame that leaves the chain `frame` frames after the start.
    float left(int64_t frame) const {
        return out.at(static_cast<std::size_t>(2 * (frame + latencyOfChain)));
    }
    /// What the chain at rest makes of a sample: the limiter's pre-gain.
    static float atRest(float sample) { return sample * std::pow(10.0F, -0.8F / 20.0F); }
    /// The frame number that a rendered ramp sample stands for, or -1 for silence.
    static int64_t rampFrame(float sample) {
        return std::llround(static_cast<double>(sample) / std::pow(10.0, -0.8 / 20.0) * 1048576.0) -
               1;
    }

    /// How many of `count` frames from `at` on are not the ramp from its frame `first` on.
    int64_t wrongFrames(int64_t at, int64_t count, int64_t first) const {
        int64_t wrong = 0;
        for (int64_t n = 0; n < count; ++n) {
            wrong += rampFrame(left(at + n)) != first + n ? 1 : 0;
        }
        return wrong;
    }
    bool isSilent(int64_t at, int64_t count) const {
        for (int64_t n = at; n < at + count; ++n) {
            if (left(n) != 0.0F) {
                return false;
            }
        }
        return true;
    }

    OfflineRenderer offline{{kRate, rt::ChannelLayout::usual(2)}, GetParam()};
    AudioEngine& engine = offline.engine();
    const int latencyOfChain = engine.latencyFrames();
    Samples out;
    std::vector<int64_t> ended;
    std::vector<std::pair<QUuid, int64_t>> promoted;
    int discarded = 0;
    int preloadsAsked = 0;
};

} // namespace quorel::test
