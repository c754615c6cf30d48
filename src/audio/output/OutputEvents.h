#pragma once

#include "audio/output/Output.h"
#include "audio/rt/LatestValue.h"
#include "core/Clock.h"

#include <functional>
#include <memory>

namespace quorel {

/// Carries what happens on an output's own thread to the listener and the caches on the main
/// thread. What concerns a stream bears the number of the open() call that it answers and is
/// dropped once a newer call was made; nothing at all arrives after the destruction.
class OutputEvents {
  public:
    explicit OutputEvents(Clock& clock)
        : clock_(clock) {}
    ~OutputEvents(); ///< main thread, when the output's thread has ended
    OutputEvents(const OutputEvents&) = delete;
    OutputEvents& operator=(const OutputEvents&) = delete;

    /// Main thread. `request` counts the open() calls.
    void attach(OutputListener& listener) { state_->listener = &listener; }
    void beginOpen(uint64_t request);
    OutputTiming timing();
    uint64_t stream() const {
        return state_->stream;
    } ///< the one announced last; 0 when it is gone
    const QList<OutputDevice>& devices() const { return state_->devices; }

    /// The output's thread.
    void opened(uint64_t request, uint64_t stream, const rt::Format& format);
    void lost(uint64_t request, const QString& reason);
    void stalled(uint64_t request, bool stalled);
    void underflowed(int total);
    void devicesChanged(const QList<OutputDevice>& devices);

    /// The output's thread; wait-free.
    void publish(uint64_t stream, const OutputTiming& timing) noexcept;

  private:
    struct StreamTiming {
        uint64_t stream = 0;
        OutputTiming timing;
    };
    struct State {
        OutputListener* listener = nullptr; // null when all is over
        uint64_t request = 0;
        uint64_t stream = 0;
        QList<OutputDevice> devices;
    };
    void post(std::function<void(State&)> action);
    void postFor(uint64_t request, std::function<void(State&)> action);

    Clock& clock_;
    // Touched on the main thread only; actions still waiting share it.
    std::shared_ptr<State> state_ = std::make_shared<State>();
    OutputTiming lastTiming_;
    rt::LatestValue<StreamTiming> timing_;
};

} // namespace quorel
