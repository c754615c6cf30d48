#include "audio/OfflineRenderer.h"

#include <algorithm>
#include <cmath>

namespace quorel {

namespace {
/// Short enough that the ring never runs low between two turns of the source worker.
constexpr int64_t kLongestBlock = 8192;
} // namespace

OfflineRenderer::OfflineRenderer(const rt::Format& format, int outputLatency)
    : output_(*new MemoryOutput(clock_, format, outputLatency))
    , engine_(clock_, std::unique_ptr<Output>(&output_), SourceWorker::Mode::Pumped) {
    engine_.openOutput({});
    clock_.runPosted();
}

int64_t OfflineRenderer::frameAt(Clock::Duration time) const {
    return std::llround(static_cast<double>(time.count()) * 1e-9 * output_.format().sampleRate);
}

Clock::Duration OfflineRenderer::timeAt(int64_t frame) const {
    const int64_t rate = output_.format().sampleRate;
    return Clock::Duration(frame / rate * 1'000'000'000 + frame % rate * 1'000'000'000 / rate);
}

void OfflineRenderer::render(int64_t frames, std::vector<float>& sink) {
    const int64_t end = position_ + frames;
    while (position_ < end) {
        clock_.runPosted();
        engine_.pumpSource();
        clock_.runPosted();
        const auto deadline = clock_.nextDeadline();
        const int64_t due = deadline ? frameAt(*deadline) : end;
        if (due <= position_) {
            clock_.advanceTo(*deadline);
            continue;
        }
        const int64_t count = std::min({end, due, position_ + kLongestBlock}) - position_;
        output_.render(static_cast<int>(count), sink);
        position_ += count;
        clock_.advanceTo(timeAt(position_));
    }
}

} // namespace quorel
