#pragma once

#include <pulse/context.h>
#include <pulse/mainloop.h>
#include <pulse/operation.h>
#include <pulse/proplist.h>
#include <pulse/subscribe.h>

#include <memory>

namespace quorel {

struct PulseRelease {
    void operator()(pa_mainloop* loop) const { pa_mainloop_free(loop); }
    void operator()(pa_proplist* properties) const { pa_proplist_free(properties); }
    void operator()(pa_operation* operation) const { pa_operation_unref(operation); }
    void operator()(pa_context* context) const {
        pa_context_set_subscribe_callback(context, nullptr, nullptr);
        pa_context_disconnect(context); // cancels the questions still open
        pa_context_unref(context);
    }
};

template <typename T>
using PulseHandle = std::unique_ptr<T, PulseRelease>;

/// Lets an operation run whose end nobody waits for; null, a refused one, is as good.
inline void letRun(pa_operation* operation) {
    PulseHandle<pa_operation>{operation};
}

} // namespace quorel
