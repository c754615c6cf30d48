#include "audio/output/MemoryOutput.h"

#include <algorithm>

namespace quorel {

MemoryOutput::MemoryOutput(Clock& clock, const rt::Format& format, int latencyFrames)
    : clock_(clock)
    , format_(format)
    , latencyFrames_(latencyFrames) {}

void MemoryOutput::attach(RenderClient& client, OutputListener& listener) {
    client_ = &client;
    listener_ = &listener;
}

void MemoryOutput::open(const QString&) {
    running_ = false;
    isOpen_ = true;
    written_ = 0;
    clock_.post([this, stream = ++stream_] {
        if (isOpen_ && stream == stream_) {
            listener_->outputOpened(stream, format_);
        }
    });
}

void MemoryOutput::start(uint64_t stream) {
    if (isOpen_ && stream == stream_) {
        running_ = true;
        sinceStart_ = 0;
    }
}

void MemoryOutput::stop() {
    running_ = false;
}

void MemoryOutput::lose() {
    isOpen_ = false;
    running_ = false;
    clock_.post([this] { listener_->outputLost(QStringLiteral("The output is gone.")); });
}

OutputTiming MemoryOutput::timing() const {
    const int64_t buffered = std::min<int64_t>(sinceStart_, latencyFrames_);
    return {written_, std::chrono::nanoseconds(buffered * 1'000'000'000 / format_.sampleRate),
            clock_.now(), running_};
}

void MemoryOutput::render(int frames, std::vector<float>& sink) {
    const std::size_t begin = sink.size();
    sink.resize(begin +
                static_cast<std::size_t>(frames) * static_cast<std::size_t>(format_.channels()));
    if (running_) {
        client_->render(sink.data() + begin, frames);
        written_ += frames;
        sinceStart_ += frames;
    }
}

} // namespace quorel
