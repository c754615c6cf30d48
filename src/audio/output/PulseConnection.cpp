#include "audio/output/PulseConnection.h"

#include <algorithm>

namespace quorel {

namespace {

constexpr std::chrono::milliseconds kSlowestRetry{2000};

} // namespace

bool PulseConnection::broken() const {
    return context_ && !PA_CONTEXT_IS_GOOD(pa_context_get_state(context_.get()));
}

PulseConnection::Time PulseConnection::step(Time now) {
    if (!context_ && now >= retryAt_) {
        connect();
    }
    if (broken()) {
        disconnect();
        retryAt_ = now + retryDelay_;
        retryDelay_ = std::min(retryDelay_ * 2, kSlowestRetry);
    }
    if (!context_) {
        return retryAt_;
    }
    if (pa_context_get_state(context_.get()) == PA_CONTEXT_READY) {
        greet();
        takeAnswers();
        ask();
    }
    return Time::max();
}

void PulseConnection::connect() {
    const PulseHandle<pa_proplist> properties(pa_proplist_new());
    pa_proplist_sets(properties.get(), PA_PROP_APPLICATION_NAME, "Quorel");
    pa_proplist_sets(properties.get(), PA_PROP_APPLICATION_ID, "quorel");
    pa_proplist_sets(properties.get(), PA_PROP_APPLICATION_ICON_NAME, "quorel");
    context_.reset(pa_context_new_with_proplist(api_, nullptr, properties.get()));
    // A refusal shows in the context's state, whether it comes at once or later.
    pa_context_connect(context_.get(), nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr);
}

void PulseConnection::disconnect() {
    context_.reset();
    greeted_ = false;
    known_ = false;
    refreshWanted_ = false;
    asking_ = false;
}

void PulseConnection::greet() {
    if (greeted_) {
        return;
    }
    greeted_ = true;
    retryDelay_ = kFirstRetry;
    pa_context_set_subscribe_callback(context_.get(), onEvent, this);
    constexpr auto kEvents = static_cast<pa_subscription_mask_t>(PA_SUBSCRIPTION_MASK_SINK |
                                                                 PA_SUBSCRIPTION_MASK_SERVER);
    letRun(pa_context_subscribe(context_.get(), kEvents, nullptr, nullptr));
    refresh();
}

void PulseConnection::refresh() {
    refreshWanted_ = true;
    ask();
}

void PulseConnection::ask() {
    // One question at a time: a burst of events costs one more round, not one each.
    if (!refreshWanted_ || asking_ || !greeted_) {
        return;
    }
    refreshWanted_ = false;
    asking_ = true;
    answeredSinks_.clear();
    answeredDefault_.clear();
    answersPending_ = 2;
    letRun(pa_context_get_sink_info_list(context_.get(), onSink, this));
    letRun(pa_context_get_server_info(context_.get(), onServer, this));
}

void PulseConnection::takeAnswers() {
    if (!asking_ || answersPending_ != 0) {
        return;
    }
    asking_ = false;
    if (known_ && answeredSinks_ == sinks_ && answeredDefault_ == default_) {
        return;
    }
    known_ = true;
    sinks_ = answeredSinks_;
    default_ = answeredDefault_;
    ++revision_;
}

const PulseSink* PulseConnection::find(const std::string& name) const {
    const auto found = std::ranges::find(sinks_, name, &PulseSink::name);
    return found == sinks_.end() ? nullptr : &*found;
}

const PulseSink* PulseConnection::defaultSink() const {
    if (const PulseSink* sink = find(default_)) {
        return sink;
    }
    return sinks_.empty() ? nullptr : &sinks_.front();
}

void PulseConnection::onEvent(pa_context*, pa_subscription_event_type_t, uint32_t, void* self) {
    static_cast<PulseConnection*>(self)->refresh();
}

void PulseConnection::onSink(pa_context*, const pa_sink_info* info, int end, void* self) {
    auto& connection = *static_cast<PulseConnection*>(self);
    if (end != 0) {
        --connection.answersPending_;
    } else if (!isDummy(info->name)) {
        connection.answeredSinks_.push_back({info->index, info->name,
                                             info->description ? info->description : info->name,
                                             streamFormat(info->sample_spec, info->channel_map)});
    }
}

void PulseConnection::onServer(pa_context*, const pa_server_info* info, void* self) {
    auto& connection = *static_cast<PulseConnection*>(self);
    if (info && info->default_sink_name) {
        connection.answeredDefault_ = info->default_sink_name;
    }
    --connection.answersPending_;
}

} // namespace quorel
