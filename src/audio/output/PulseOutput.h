#pragma once

#include "audio/output/OutputEvents.h"
#include "audio/output/PulseHandles.h"
#include "audio/output/PulseSession.h"

#include <atomic>
#include <mutex>
#include <thread>

namespace quorel {

/// Sound through a PulseAudio server, or PipeWire in its place. A thread of its own makes every
/// call to the server's library; the main thread only leaves the newest request for it, so that
/// neither a stuck server nor a busy callback can hold the main thread up, and reads the newest
/// timing.
class PulseOutput final : public Output {
  public:
    explicit PulseOutput(Clock& clock);
    ~PulseOutput() override; ///< does not wait for the server

    void attach(RenderClient& client, OutputListener& listener) override;
    void open(const QString& uid) override;
    void start(uint64_t stream) override;
    void stop() override;
    OutputTiming timing() const override { return events_.timing(); }
    QList<OutputDevice> devices() const override { return events_.devices(); }

  private:
    void wake();
    void run(uint64_t stream); ///< 0 for none
    void loop(RenderClient& client);
    PulseRequest request();

    mutable OutputEvents events_;
    PulseHandle<pa_mainloop> loop_;
    std::atomic<bool> ending_ = false;
    std::mutex requestMutex_; // held to copy the request, never during the write callback
    PulseRequest request_;
    std::thread thread_;
};

} // namespace quorel
