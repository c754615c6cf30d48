#pragma once

#include "audio/output/Output.h"
#include "audio/output/PulseFormat.h"
#include "audio/output/PulseHandles.h"

#include <pulse/context.h>
#include <pulse/introspect.h>
#include <pulse/subscribe.h>

#include <chrono>
#include <string>
#include <vector>

namespace quorel {

/// A device of the sound server, with the format of a stream to it.
struct PulseSink {
    uint32_t index = 0;
    std::string name;
    std::string description;
    PulseFormat format;

    bool operator==(const PulseSink&) const = default;
};

/// The connection to the sound server, made again for as long as it takes, and what the server
/// tells about its devices. Lives on the output's thread; the server's callbacks only note what
/// happened, and step() acts on it.
class PulseConnection {
  public:
    using Time = std::chrono::steady_clock::time_point;

    explicit PulseConnection(pa_mainloop_api* api)
        : api_(api) {}
    ~PulseConnection() { disconnect(); }
    PulseConnection(const PulseConnection&) = delete;
    PulseConnection& operator=(const PulseConnection&) = delete;

    /// True if the context that streams belong to has failed: they must go before the next step().
    bool broken() const;

    /// Connects, retries and asks for the devices where it is time to. Returns when it wants to be
    /// called again at the latest.
    Time step(Time now);

    /// Asks for the devices anew; not current() until the answer has come.
    void refresh();

    bool ready() const { return context_ && known_; } ///< connected, with the devices known
    bool current() const { return ready() && !refreshWanted_ && !asking_; }
    bool unreachable() const { return !context_; } ///< the last attempt has failed
    pa_context* context() const { return context_.get(); }

    /// In the server's order, without its dummy. Of the last server met while there is none.
    const std::vector<PulseSink>& sinks() const { return sinks_; }
    uint64_t revision() const { return revision_; } ///< grows with each change of sinks or default
    const PulseSink* find(const std::string& name) const;
    const PulseSink* defaultSink() const; ///< the first sink if the server names none; may be null

    /// Whether a sink is the stand-in of a server without devices, which nobody hears.
    static bool isDummy(const std::string& name) { return name == "auto_null"; }

  private:
    static constexpr std::chrono::milliseconds kFirstRetry{200};

    void connect();
    void disconnect();
    void greet();
    void ask();
    void takeAnswers();

    static void onEvent(pa_context*, pa_subscription_event_type_t, uint32_t, void* self);
    static void onSink(pa_context*, const pa_sink_info* info, int end, void* self);
    static void onServer(pa_context*, const pa_server_info* info, void* self);

    pa_mainloop_api* api_;
    PulseHandle<pa_context> context_;
    Time retryAt_{};
    std::chrono::milliseconds retryDelay_ = kFirstRetry;
    bool greeted_ = false;

    bool known_ = false;
    bool refreshWanted_ = false;
    bool asking_ = false;
    int answersPending_ = 0;
    std::vector<PulseSink> answeredSinks_;
    std::string answeredDefault_;

    std::vector<PulseSink> sinks_;
    std::string default_;
    uint64_t revision_ = 0;
};

} // namespace quorel
