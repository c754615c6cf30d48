#include "audio/HeardClock.h"

#include <algorithm>
#include <cmath>

namespace quorel {

using namespace std::chrono_literals;

namespace {
/// A reading is renewed with every burst that the server asks for; what is older than the longest
/// of them says nothing about how far the sound has come since.
constexpr auto kLongestBurst = 500ms;

int64_t framesIn(std::chrono::nanoseconds time, int sampleRate) {
    return std::llround(static_cast<double>(time.count()) * 1e-9 * sampleRate);
}
} // namespace

int64_t heardDeviceFrame(const OutputTiming& timing, int sampleRate, std::chrono::nanoseconds now) {
    int64_t frame = timing.framesWritten - framesIn(timing.latency, sampleRate);
    if (timing.advancing) {
        frame += framesIn(std::clamp<std::chrono::nanoseconds>(now - timing.at, 0ns, kLongestBurst),
                          sampleRate);
    }
    return std::min(frame, timing.framesWritten);
}

int64_t sourceFrameAt(const rt::RenderReport& report, int64_t deviceFrame, int latencyFrames) {
    const int64_t frame = deviceFrame - latencyFrames;
    const uint64_t oldest =
        report.runCount > rt::RenderReport::kRuns ? report.runCount - rt::RenderReport::kRuns : 0;
    int64_t source = 0;
    for (uint64_t i = report.runCount; i > oldest; --i) {
        const rt::RenderedRun& run = report.runs[(i - 1) % rt::RenderReport::kRuns];
        if (frame >= run.device) {
            return run.source + std::min(frame - run.device, run.frames);
        }
        source = run.source;
    }
    return source; // before the first run known: its start
}

} // namespace quorel
