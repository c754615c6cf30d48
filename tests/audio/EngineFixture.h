#pragma once

#include "audio/OfflineRenderer.h"
#include "support/MadeFile.h"
#include "support/RealtimeGuard.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace quorel::test {

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
    /// How many of `count` frames from `at` on are not the ramp from its frame `first` on.
    int64_t wrongFrames(int64_t at, int64_t count, int64_t first) const {
        int64_t wrong = 0;
        for (int64_t n = 0; n < count; ++n)
            wrong += rampFrame(left(at + n)) != first + n ? 1 : 0;
        return wrong;
    }
    bool isSilent(int64_t at, int64_t count) const {
        for (int64_t n = at; n < at + count; ++n)
            if (left(n) != 0.0F)
                return false;
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
