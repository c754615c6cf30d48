#include "audio/output/PulseStream.h"

#include <algorithm>

namespace quorel {

namespace {

constexpr std::chrono::seconds kStallTime{2};

// PipeWire reports the position of the last cycle's beginning, so that its reports scatter by a
// cycle, usually 10 to 43 ms. While the sound flows, only a part of the difference is taken over.
constexpr std::chrono::milliseconds kMostJitter{60};
constexpr int kSmoothing = 8;

PulseStream& streamOf(void* self) {
    return *static_cast<PulseStream*>(self);
}

} // namespace

PulseStream::PulseStream(pa_context* context, Setup setup, RenderClient& client,
                         OutputEvents& events)
    : setup_(std::move(setup))
    , client_(client)
    , events_(events)
    , frameBytes_(pa_frame_size(&setup_.format.spec)) {
    events_.publish(setup_.id, {});
    const PulseHandle<pa_proplist> properties(pa_proplist_new());
    pa_proplist_sets(properties.get(), PA_PROP_MEDIA_ROLE, "music");
    stream_ = pa_stream_new_with_proplist(context, "Playback", &setup_.format.spec,
                                          &setup_.format.map, properties.get());
    if (!stream_) {
        return;
    }
    setCallbacks(true);
    const pa_buffer_attr attributes = bufferAttributes();
    // Not INTERPOLATE_TIMING: after a start the library's own reading runs ahead by most of the
    // buffer for some 70 ms, while the server's reports that it is made from are right.
    unsigned flags =
        PA_STREAM_START_CORKED | PA_STREAM_AUTO_TIMING_UPDATE | PA_STREAM_ADJUST_LATENCY;
    if (!setup_.pinnedTo.empty()) {
        flags |= PA_STREAM_DONT_MOVE;
    }
    // A refusal shows in the stream's state.
    pa_stream_connect_playback(stream_, setup_.pinnedTo.empty() ? nullptr : setup_.pinnedTo.c_str(),
                               &attributes, static_cast<pa_stream_flags_t>(flags), nullptr,
                               nullptr);
}

PulseStream::~PulseStream() {
    if (stream_) {
        setCallbacks(false);
        pa_stream_disconnect(stream_);
        pa_stream_unref(stream_);
    }
}

void PulseStream::setCallbacks(bool on) {
    pa_stream_set_write_callback(stream_, on ? onWrite : nullptr, this);
    pa_stream_set_latency_update_callback(stream_, on ? onReport : nullptr, this);
    pa_stream_set_suspended_callback(stream_, on ? onSuspended : nullptr, this);
    pa_stream_set_moved_callback(stream_, on ? onMoved : nullptr, this);
    pa_stream_set_underflow_callback(stream_, on ? onUnderflow : nullptr, this);
}

PulseStream::State PulseStream::state() const {
    const pa_stream_state_t state = stream_ ? pa_stream_get_state(stream_) : PA_STREAM_FAILED;
    return state == PA_STREAM_READY      ? State::Open
           : state == PA_STREAM_CREATING ? State::Opening
                                         : State::Failed;
}

std::string PulseStream::device() const {
    const char* name = pa_stream_get_device_name(stream_);
    return name ? name : "";
}

void PulseStream::start(Time now) {
    // The flush drops what an earlier stop has left behind; both precede the sound in the order in
    // which the server takes them.
    letRun(pa_stream_flush(stream_, nullptr, nullptr));
    if (!running_) {
        letRun(pa_stream_cork(stream_, 0, nullptr, nullptr));
    }
    running_ = true;
    startedAt_ = now;
    askedAt_ = now;
    // Until the server reports, what was heard last is what the device held when it began.
    playing_ = false;
    heard_ = duration(framesWritten_) - deviceLatency_;
    heardAt_ = now;
    const std::size_t writable = pa_stream_writable_size(stream_);
    if (writable != static_cast<std::size_t>(-1)) {
        write(writable);
    }
}

void PulseStream::stop() {
    if (running_) {
        hold();
        running_ = false;
        letRun(pa_stream_cork(stream_, 1, nullptr, nullptr));
        publish();
    }
}

bool PulseStream::checkStalled(Time now) {
    const bool stalled = running_ && !suspended_ && now - askedAt_ > kStallTime;
    if (stalled != stalled_) {
        hold();
        stalled_ = stalled;
        publish();
    }
    return stalled_;
}

pa_buffer_attr PulseStream::bufferAttributes() const {
    constexpr auto kServersChoice = static_cast<uint32_t>(-1);
    pa_buffer_attr attributes{};
    attributes.maxlength = kServersChoice;
    attributes.tlength = static_cast<uint32_t>(pa_usec_to_bytes(
        static_cast<pa_usec_t>(setup_.buffer / std::chrono::microseconds(1)), &setup_.format.spec));
    attributes.prebuf = kServersChoice;
    attributes.minreq = kServersChoice;
    attributes.fragsize = kServersChoice;
    return attributes;
}

void PulseStream::setBuffer(std::chrono::milliseconds length) {
    setup_.buffer = length;
    const pa_buffer_attr attributes = bufferAttributes();
    letRun(pa_stream_set_buffer_attr(stream_, &attributes, nullptr, nullptr));
}

void PulseStream::write(std::size_t bytes) noexcept {
    while (bytes >= frameBytes_) {
        void* data = nullptr;
        std::size_t size = bytes;
        if (pa_stream_begin_write(stream_, &data, &size) < 0 || !data) {
            break;
        }
        const std::size_t frames = std::min(size, bytes) / frameBytes_;
        if (frames == 0) {
            pa_stream_cancel_write(stream_);
            break;
        }
        client_.render(static_cast<float*>(data), static_cast<int>(frames));
        if (pa_stream_write(stream_, data, frames * frameBytes_, nullptr, 0, PA_SEEK_RELATIVE) <
            0) {
            break;
        }
        framesWritten_ += static_cast<int64_t>(frames);
        bytes -= frames * frameBytes_;
    }
    publish();
}

void PulseStream::takeReport() {
    const pa_timing_info* info = pa_stream_get_timing_info(stream_);
    if (!info || info->write_index_corrupt || info->read_index_corrupt) {
        return; // asked for before the newest flush; the next report is under way
    }
    using std::chrono::microseconds;
    const auto frameBytes = static_cast<int64_t>(frameBytes_);
    // The server's indices also count what was flushed, ours does not: they differ by a constant
    // between starts.
    const int64_t framesRead = framesWritten_ - (info->write_index - info->read_index) / frameBytes;
    deviceLatency_ = microseconds(info->sink_usec);
    const bool advanced = advancing();
    hold();
    playing_ = info->playing != 0;
    auto reported = duration(framesRead) - deviceLatency_;
    if (advancing()) {
        reported += microseconds(info->transport_usec); // the age of the report
    }
    const auto error = reported - heard_;
    const bool jitter = advanced && advancing() && std::chrono::abs(error) < kMostJitter;
    heard_ += jitter ? error / kSmoothing : error;
}

bool PulseStream::advancing() const noexcept {
    return running_ && !suspended_ && !stalled_ && playing_;
}

std::chrono::nanoseconds PulseStream::heardAt(Time now) const noexcept {
    const auto heard = advancing() ? heard_ + (now - heardAt_) : heard_;
    return std::min(heard, duration(framesWritten_));
}

void PulseStream::hold() noexcept {
    const auto now = std::chrono::steady_clock::now();
    heard_ = heardAt(now);
    heardAt_ = now;
}

void PulseStream::publish() noexcept {
    const auto now = std::chrono::steady_clock::now();
    events_.publish(setup_.id, {.framesWritten = framesWritten_,
                                .latency = duration(framesWritten_) - heardAt(now),
                                .at = now.time_since_epoch(),
                                .advancing = advancing()});
}

std::chrono::nanoseconds PulseStream::duration(int64_t frames) const noexcept {
    return std::chrono::nanoseconds(frames * 1'000'000'000 / setup_.format.spec.rate);
}

void PulseStream::onWrite(pa_stream*, std::size_t bytes, void* self) {
    PulseStream& stream = streamOf(self);
    // A stream that is stopped is also asked for sound; the next start answers.
    if (stream.running_) {
        stream.askedAt_ = std::chrono::steady_clock::now();
        stream.write(bytes);
    }
}

void PulseStream::onReport(pa_stream*, void* self) {
    streamOf(self).takeReport();
    streamOf(self).publish();
}

void PulseStream::onSuspended(pa_stream* stream, void* self) {
    PulseStream& me = streamOf(self);
    me.hold();
    me.suspended_ = pa_stream_is_suspended(stream) > 0;
    me.askedAt_ = std::chrono::steady_clock::now();
    me.publish();
}

void PulseStream::onMoved(pa_stream*, void* self) {
    streamOf(self).moved_ = true;
}

void PulseStream::onUnderflow(pa_stream*, void* self) {
    PulseStream& stream = streamOf(self);
    // Just after a start the buffer may still be on its way; that is no sign of a slow machine.
    const auto now = std::chrono::steady_clock::now();
    if (stream.running_ && now - stream.startedAt_ > stream.setup_.buffer) {
        stream.underflowed_ = true;
    }
    stream.publish();
}

} // namespace quorel
