#include "audio/output/NullOutput.h"

#include <algorithm>

namespace quorel {

namespace {

// More than this behind its time, the output lets the missed time go instead of catching up: after
// a suspend the music goes on where it was.
constexpr std::chrono::milliseconds kMostCatchUp{100};

} // namespace

NullOutput::NullOutput(Clock& clock, int sampleRate)
    : format_{sampleRate, rt::ChannelLayout::usual(2)}
    , burstFrames_(sampleRate / 100)
    , events_(clock)
    , buffer_(static_cast<std::size_t>(burstFrames_ * format_.channels())) {}

NullOutput::~NullOutput() {
    change([](Request& request) { request.ending = true; });
    if (thread_.joinable()) {
        thread_.join();
    }
}

void NullOutput::attach(RenderClient& client, OutputListener& listener) {
    client_ = &client;
    events_.attach(listener);
    thread_ = std::thread([this] { run(); });
}

void NullOutput::open(const QString&) {
    change([this](Request& request) {
        request.running = false;
        events_.beginOpen(++request.stream);
    });
}

void NullOutput::start(uint64_t stream) {
    if (stream == request_.stream) { // only this thread writes it
        change([](Request& request) { request.running = true; });
    }
}

void NullOutput::stop() {
    change([](Request& request) { request.running = false; });
}

void NullOutput::change(const std::function<void(Request&)>& edit) {
    {
        const std::lock_guard lock(mutex_);
        edit(request_);
        ++request_.changes;
    }
    changed_.notify_one();
}

void NullOutput::run() {
    Progress progress;
    uint64_t seen = 0;
    while (true) {
        Request request;
        {
            std::unique_lock lock(mutex_);
            const auto news = [&] { return request_.changes != seen; };
            if (progress.running) {
                changed_.wait_until(lock, timeOf(progress, progress.framesWritten), news);
            } else {
                changed_.wait(lock, news);
            }
            request = request_;
        }
        if (request.ending) {
            return;
        }
        if (request.changes != seen) {
            seen = request.changes;
            follow(request, progress);
        }
        if (progress.running) {
            renderDue(progress);
        }
    }
}

void NullOutput::follow(const Request& request, Progress& progress) {
    if (request.stream != progress.stream) {
        progress = {.stream = request.stream};
        publish(progress);
        events_.opened(request.stream, request.stream, format_);
    }
    if (request.running) {
        progress.origin = SteadyClock::now();
        progress.originFrame = progress.framesWritten;
    } else {
        publish(progress); // for the last time: what was not heard by now stays unheard
    }
    progress.running = request.running;
    publish(progress);
}

void NullOutput::renderDue(Progress& progress) {
    const auto now = SteadyClock::now();
    const auto due = timeOf(progress, progress.framesWritten);
    if (now < due) {
        return;
    }
    if (now - due > kMostCatchUp) {
        progress.origin += now - due;
    }
    client_->render(buffer_.data(), burstFrames_);
    progress.framesWritten += burstFrames_;
    publish(progress);
}

void NullOutput::publish(Progress& progress) {
    const auto now = SteadyClock::now();
    if (progress.running) {
        const auto left = timeOf(progress, progress.framesWritten) - now;
        progress.latency = std::max(left, SteadyClock::duration::zero());
    }
    events_.publish(progress.stream, {.framesWritten = progress.framesWritten,
                                      .latency = progress.latency,
                                      .at = now.time_since_epoch(),
                                      .advancing = progress.running});
}

NullOutput::SteadyClock::time_point NullOutput::timeOf(const Progress& progress,
                                                       int64_t frame) const {
    const int64_t frames = frame - progress.originFrame;
    return progress.origin + std::chrono::nanoseconds(frames * 1'000'000'000 / format_.sampleRate);
}

} // namespace quorel
