#pragma once

#include "support/LivePlayer.h"
#include "support/MadeFile.h"
#include "support/SoundServerTest.h"

namespace quorel::test {

/// The engine plays a ramp on a real sound server, whose capture tells frame by frame what arrived.
class LiveEngineTest : public SoundServerTest {
  protected:
    static constexpr int kRate = 48000;
    static constexpr int64_t kEdge = 960;
    static TrackToPlay trackOf(std::shared_ptr<AudioFile> file) {
        return {std::move(file), QUuid::createUuid(), 0, {}, 1.0};
    }
    static TrackToPlay track(int64_t frames, int64_t first = 0) {
        return trackOf(std::make_shared<MadeFile>(kRate, 2, ramp(frames, first)));
    }
    /// Plays a track and waits until its start has been captured.
    void playAloud(LivePlayer& player, Recorder& recorder, const TrackToPlay& wanted) {
        ASSERT_TRUE(player.runUntil([&] { return player.engine.isOutputOpen(); }));
        ASSERT_FALSE(player.engine.load(wanted, 0));
        ASSERT_TRUE(player.runUntil([&] { return recorder.latest() != 0.0F; }));
    }

    /// Numbers of the ramp's frames in a capture, silence left out.
    static std::vector<int64_t> heard(const std::vector<float>& capture) {
        std::vector<int64_t> numbers;
        for (std::size_t i = 0; i < capture.size(); i += 2) {
            if (capture[i] != 0.0F)
                numbers.push_back(rampFrame(capture[i]));
        }
        return numbers;
    }
    /// What has been heard once nothing more comes.
    static std::vector<int64_t> heardInAll(LivePlayer& player, const Recorder& recorder) {
        std::vector<int64_t> before;
        for (auto now = heard(recorder.samples()); now != before || recorder.latest() != 0.0F;
             now = heard(recorder.samples())) {
            before = now;
            player.run(std::chrono::milliseconds(500));
        }
        return before;
    }
    /// Places where the ramp does not go on with the next frame.
    static std::vector<std::size_t> breaks(const std::vector<int64_t>& numbers) {
        std::vector<std::size_t> places;
        for (std::size_t i = 1; i < numbers.size(); ++i)
            if (numbers[i] != numbers[i - 1] + 1)
                places.push_back(i);
        return places;
    }
};

} // namespace quorel::test
