#pragma once

#include "audio/output/Output.h"
#include "core/ManualClock.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <functional>
#include <thread>
#include <vector>

namespace quorel::test {

using namespace std::chrono_literals;

/// Renders a ramp that shows every lost, doubled or misplaced frame: frame n holds (n + 1) / 2^24,
/// higher by 1/16 in each further channel. From frame `limit` on there is silence.
class RampClient final : public RenderClient {
  public:
    void render(float* interleaved, int count) noexcept override {
        std::this_thread::sleep_for(delay.exchange(0ms));
        for (int i = 0; i < count; ++i) {
            const bool sounds = frames < limit;
            for (int channel = 0; channel < channels; ++channel) {
                const auto value = static_cast<float>(frames + 1 + (int64_t{channel} << 20));
                *interleaved++ = sounds ? std::ldexp(value, -24) : 0.0F;
            }
            frames += sounds ? 1 : 0;
            total += 1;
        }
    }

    static int64_t rampOf(float sample) { return std::lround(std::ldexp(sample, 24)); }

    int channels = 2; // changed only while nothing runs
    std::atomic<int64_t> limit = 1 << 20;
    std::atomic<int64_t> frames = 0; // of the ramp so far
    std::atomic<int64_t> total = 0;
    std::atomic<std::chrono::milliseconds> delay{0ms}; // of the next call
};

/// A ramp as it was captured.
struct RampReading {
    int64_t first = 0;
    int64_t last = 0;
    int breaks = 0; // where a sample is not its predecessor's successor
    int holes = 0;  // silences inside
};

inline RampReading readRamp(const std::vector<float>& samples, int channels, int channel = 0) {
    RampReading reading;
    bool silent = true;
    for (auto i = static_cast<std::size_t>(channel); i < samples.size();
         i += static_cast<std::size_t>(channels)) {
        if (samples[i] == 0.0F) {
            silent = true;
            continue;
        }
        const int64_t value = RampClient::rampOf(samples[i]) - (int64_t{channel} << 20);
        if (reading.first == 0) {
            reading.first = value;
        } else {
            reading.breaks += value != reading.last + 1 ? 1 : 0;
            reading.holes += silent ? 1 : 0;
        }
        reading.last = value;
        silent = false;
    }
    return reading;
}

/// Notes what an output tells.
class NotingListener final : public OutputListener {
  public:
    explicit NotingListener(RampClient& client)
        : client_(client) {}

    void outputOpened(uint64_t opened, const rt::Format& openedAs) override {
        stream = opened;
        format = openedAs;
        client_.channels = format.channels();
        ++openings;
    }
    void outputLost(const QString& reason) override {
        EXPECT_FALSE(reason.isEmpty());
        stream = 0;
        ++losses;
    }
    void outputStalled(bool isStalled) override { stalled = isStalled; }
    void outputUnderflowed(int total) override { underflows = total; }
    void outputDevicesChanged() override { ++deviceChanges; }

    uint64_t stream = 0;
    rt::Format format;
    int openings = 0;
    int losses = 0;
    bool stalled = false;
    int underflows = 0;
    int deviceChanges = 0;

  private:
    RampClient& client_;
};

/// Runs what is posted until the condition holds. Returns false after that long in vain.
inline bool waitUntil(ManualClock& clock, const std::function<bool()>& condition,
                      std::chrono::milliseconds longest = 20s) {
    const auto end = std::chrono::steady_clock::now() + longest;
    while (true) {
        clock.runPosted();
        if (condition())
            return true;
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(1ms);
    }
}

/// The number of the frame heard now, going by the output's reading.
inline double heardFrame(const Output& output, int rate) {
    const OutputTiming timing = output.timing();
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    const auto since = timing.advancing ? now - timing.at : 0ns;
    const double heard = static_cast<double>(timing.framesWritten) +
                         static_cast<double>((since - timing.latency).count()) * 1e-9 * rate;
    return std::min(heard, static_cast<double>(timing.framesWritten));
}

} // namespace quorel::test
