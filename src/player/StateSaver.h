#pragma once

#include "core/SerialQueue.h"
#include "player/SaveSchedule.h"
#include "storage/Persistence.h"

namespace quorel {

/// Saves the state in the background: a snapshot, taken in a moment, is encoded and written on a
/// queue. Main thread.
class StateSaver {
  public:
    struct Events {
        std::function<PersistedState()> snapshot;
        std::function<void()> ended; ///< a save is done, its snapshot gone
    };

    /// `store` is left alone by others from the first save on.
    StateSaver(Clock& clock, SerialQueue& writer, Persistence& store, Events events)
        : writer_(writer)
        , store_(store)
        , events_(std::move(events))
        , schedule_(clock, {[this](quint64 save) { start(save); }, [this] { writer_.drain(); }}) {}

    void changed() { schedule_.changed(); }
    /// Returns when everything is saved.
    void flush() { schedule_.flush(); }
    /// A snapshot is held: records that change now are copied first.
    bool isUnderWay() const { return underWay_ > 0; }

  private:
    void start(quint64 save) {
        ++underWay_;
        writer_.post(
            SerialQueue::Priority::Ordinary,
            [&store = store_, state = events_.snapshot()](const std::stop_token&) {
                return store.save(state);
            },
            [this, save](bool succeeded) {
                --underWay_;
                schedule_.ended(save, succeeded);
                events_.ended();
            });
    }

    SerialQueue& writer_;
    Persistence& store_;
    const Events events_;
    SaveSchedule schedule_;
    int underWay_ = 0;
};

} // namespace quorel
