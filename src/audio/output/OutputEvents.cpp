#include "audio/output/OutputEvents.h"

namespace quorel {

OutputEvents::~OutputEvents() {
    state_->listener = nullptr;
}

void OutputEvents::beginOpen(uint64_t request) {
    state_->request = request;
    state_->stream = 0;
}

OutputTiming OutputEvents::timing() {
    const StreamTiming& newest = timing_.read();
    if (state_->stream != 0 && newest.stream == state_->stream) {
        lastTiming_ = newest.timing;
    } else {
        // The stream is over, or its successor has not been announced: time stands still.
        lastTiming_.advancing = false;
    }
    return lastTiming_;
}

void OutputEvents::opened(uint64_t request, uint64_t stream, const rt::Format& format) {
    postFor(request, [stream, format](State& state) {
        state.stream = stream;
        state.listener->outputOpened(stream, format);
    });
}

void OutputEvents::lost(uint64_t request, const QString& reason) {
    postFor(request, [reason](State& state) {
        state.stream = 0;
        state.listener->outputLost(reason);
    });
}

void OutputEvents::stalled(uint64_t request, bool stalled) {
    postFor(request, [stalled](State& state) { state.listener->outputStalled(stalled); });
}

void OutputEvents::underflowed(int total) {
    post([total](State& state) { state.listener->outputUnderflowed(total); });
}

void OutputEvents::devicesChanged(const QList<OutputDevice>& devices) {
    post([devices](State& state) {
        state.devices = devices;
        state.listener->outputDevicesChanged();
    });
}

void OutputEvents::publish(uint64_t stream, const OutputTiming& timing) noexcept {
    timing_.write({stream, timing});
}

void OutputEvents::post(std::function<void(State&)> action) {
    clock_.post([state = state_, action = std::move(action)] {
        if (state->listener) {
            action(*state);
        }
    });
}

void OutputEvents::postFor(uint64_t request, std::function<void(State&)> action) {
    post([request, action = std::move(action)](State& state) {
        if (state.request == request) {
            action(state);
        }
    });
}

} // namespace quorel
