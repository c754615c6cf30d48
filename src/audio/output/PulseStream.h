#pragma once

#include "audio/output/OutputEvents.h"
#include "audio/output/PulseConnection.h"

#include <pulse/stream.h>

#include <string>

namespace quorel {

/// One stream to the sound server, from the attempt to open it to its end. Lives on the output's
/// thread; what the server's callbacks note is asked for from outside them. The write callback
/// renders, and neither waits, locks nor allocates in code of ours.
class PulseStream {
  public:
    using Time = std::chrono::steady_clock::time_point;
    enum class State { Opening, Open, Failed };

    struct Setup {
        uint64_t id = 0;
        PulseFormat format;
        std::string pinnedTo; ///< the sink that the stream stays on; empty follows the default
        std::chrono::milliseconds buffer{};
    };

    PulseStream(pa_context* context, Setup setup, RenderClient& client, OutputEvents& events);
    ~PulseStream();
    PulseStream(const PulseStream&) = delete;
    PulseStream& operator=(const PulseStream&) = delete;

    const Setup& setup() const { return setup_; }
    State state() const;
    std::string device() const; ///< the sink it plays on; while open

    void start(Time now); ///< from an empty buffer, also while it runs
    void stop();
    bool running() const { return running_; }

    /// Whether the server has not asked for sound for 2 s though it should.
    bool checkStalled(Time now);

    /// Whether the server has moved the stream, and whether it ran out of sound, since last asked.
    bool takeMoved() { return std::exchange(moved_, false); }
    bool takeUnderflow() { return std::exchange(underflowed_, false); }

    /// Changes the length of the server's buffer; the sound goes on.
    void setBuffer(std::chrono::milliseconds length);

  private:
    pa_buffer_attr bufferAttributes() const;
    void setCallbacks(bool on);
    void write(std::size_t bytes) noexcept;
    void publish() noexcept;
    void takeReport();
    bool advancing() const noexcept;
    std::chrono::nanoseconds heardAt(Time now) const noexcept;
    void hold() noexcept; ///< before a change of what advancing() depends on
    std::chrono::nanoseconds duration(int64_t frames) const noexcept;

    static void onWrite(pa_stream*, std::size_t bytes, void* self);
    static void onReport(pa_stream*, void* self);
    static void onSuspended(pa_stream*, void* self);
    static void onMoved(pa_stream*, void* self);
    static void onUnderflow(pa_stream*, void* self);

    Setup setup_;
    RenderClient& client_;
    OutputEvents& events_;
    pa_stream* stream_ = nullptr;
    std::size_t frameBytes_;

    bool running_ = false;
    bool suspended_ = false;
    bool stalled_ = false;
    bool moved_ = false;
    bool underflowed_ = false;
    Time startedAt_{};
    Time askedAt_{}; // when the server last wanted sound

    int64_t framesWritten_ = 0;
    // From the server's newest report: how much of what was written had been heard, and when that
    // was.
    std::chrono::nanoseconds heard_{0};
    Time heardAt_{};
    bool playing_ = false;                      // not waiting for its buffer to fill
    std::chrono::nanoseconds deviceLatency_{0}; // the part of the latency behind the buffer
};

} // namespace quorel
