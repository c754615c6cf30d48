#include "audio/output/PulseOutput.h"

#include <pthread.h>

#include <algorithm>
#include <climits>

namespace quorel {

namespace {

/// Only privileged users and members of some groups may; the sound does without it, too.
void askForRealTime() {
    sched_param parameter{};
    parameter.sched_priority = 10;
    pthread_setschedparam(pthread_self(), SCHED_RR, &parameter);
}

/// Microseconds for pa_mainloop_prepare; rounded up, so that a deadline has come when it returns.
int timeoutUntil(std::chrono::steady_clock::time_point wake) {
    if (wake == PulseSession::Time::max()) {
        return -1;
    }
    using std::chrono::microseconds;
    const auto left = std::chrono::ceil<microseconds>(wake - std::chrono::steady_clock::now());
    return static_cast<int>(std::clamp<int64_t>(left.count(), 0, INT_MAX));
}

} // namespace

PulseOutput::PulseOutput(Clock& clock)
    : events_(clock)
    , loop_(pa_mainloop_new()) {}

PulseOutput::~PulseOutput() {
    if (thread_.joinable()) {
        ending_ = true;
        wake();
        thread_.join();
    }
}

void PulseOutput::attach(RenderClient& client, OutputListener& listener) {
    events_.attach(listener);
    thread_ = std::thread([this, &client] { loop(client); });
}

void PulseOutput::open(const QString& uid) {
    {
        const std::lock_guard lock(requestMutex_);
        request_.uid = uid.toStdString();
        request_.runningStream = 0;
        events_.beginOpen(++request_.open);
    }
    wake();
}

void PulseOutput::start(uint64_t stream) {
    if (stream != 0 && stream == events_.stream()) {
        run(stream);
    }
}

void PulseOutput::stop() {
    run(0);
}

void PulseOutput::run(uint64_t stream) {
    {
        const std::lock_guard lock(requestMutex_);
        request_.runningStream = stream;
        ++request_.run;
    }
    wake();
}

void PulseOutput::wake() {
    pa_mainloop_wakeup(loop_.get());
}

PulseRequest PulseOutput::request() {
    const std::lock_guard lock(requestMutex_);
    return request_;
}

void PulseOutput::loop(RenderClient& client) {
    pthread_setname_np(pthread_self(), "quorel-output");
    askForRealTime();
    PulseSession session(pa_mainloop_get_api(loop_.get()), client, events_);
    while (!ending_) {
        const auto wake = session.step(request(), std::chrono::steady_clock::now());
        if (pa_mainloop_prepare(loop_.get(), timeoutUntil(wake)) < 0 ||
            pa_mainloop_poll(loop_.get()) < 0 || pa_mainloop_dispatch(loop_.get()) < 0) {
            events_.lost(request().open, QStringLiteral("The sound output has failed."));
            return;
        }
    }
}

} // namespace quorel
