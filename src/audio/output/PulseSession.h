#pragma once

#include "audio/output/OutputEvents.h"
#include "audio/output/PulseConnection.h"
#include "audio/output/PulseStream.h"

#include <map>
#include <memory>
#include <string>

namespace quorel {

/// What the main thread wants of the sound server; only the newest counts.
struct PulseRequest {
    std::string uid;            ///< the wanted device; empty is the server's default
    uint64_t open = 0;          ///< counts the open() calls; 0 before the first
    uint64_t runningStream = 0; ///< the stream that shall run; 0 for none
    uint64_t run = 0;           ///< counts the start() and stop() calls
};

/// Decides what to do at the sound server: keeps a stream open where the request and the devices
/// present call for it, and tells what becomes of it. Lives on the output's thread, outside the
/// server's callbacks.
class PulseSession {
  public:
    using Time = std::chrono::steady_clock::time_point;

    PulseSession(pa_mainloop_api* api, RenderClient& client, OutputEvents& events)
        : connection_(api)
        , client_(client)
        , events_(events) {}

    /// Acts on the request and on what has happened since. Returns when it wants to be called again
    /// at the latest.
    Time step(const PulseRequest& request, Time now);

  private:
    void followRequest(const PulseRequest& request, Time now);
    void reportDevices(Time now);
    void followStream(Time now);
    void streamFailed(Time now);
    void settle(Time now);
    void run(const PulseRequest& request, Time now);
    void watch(Time now);
    Time awaitAnswer(Time now);
    void lengthenBuffer();
    void openStream(Time now);
    void close(Time now);
    void noDevice(Time now);
    void retryLater(Time now);
    void tellLost(const QString& reason);

    /// The wanted sink if it is present, else null: then the default serves.
    const PulseSink* chosenSink() const;

    PulseConnection connection_;
    RenderClient& client_;
    OutputEvents& events_;

    std::string wantedUid_;
    uint64_t open_ = 0;
    uint64_t run_ = 0;
    uint64_t seenRevision_ = 0;

    std::unique_ptr<PulseStream> stream_;
    uint64_t lastStream_ = 0;
    std::string expectedSink_; // where the stream was meant to go, its format taken from there
    std::string leadsTo_;      // where the default led instead, for the next stream's format
    bool settled_ = false;     // the stream is open and has been announced
    bool moved_ = false;
    bool lostTold_ = false; // once an outage
    bool stalledTold_ = false;
    bool failedBefore_ = false; // since a stream was last open
    Time answerDue_ = Time::max();
    Time retryAt_{};
    std::chrono::milliseconds retryDelay_{};

    std::map<std::string, std::chrono::milliseconds> buffers_; // by sink, where longer than usual
    int underflows_ = 0;
};

} // namespace quorel
