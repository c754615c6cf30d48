#pragma once

#include "core/Clock.h"

#include <QtGlobal>
#include <functional>
#include <memory>
#include <optional>

namespace quorel {

/// When the state is saved: half a second after the last of a burst of changes, but not later than
/// two seconds after the first. One save at a time: what falls due while one is under way follows
/// as soon as that has ended. A save that fails is not tried again before something changes, but
/// once more at the end. Main thread only.
class SaveSchedule {
  public:
    static constexpr Clock::Duration kAfterLast = std::chrono::milliseconds(500);
    static constexpr Clock::Duration kAfterFirst = std::chrono::seconds(2);

    struct Actions {
        /// Begins to save the state as it is now; ended() is called with the number, later or at
        /// once.
        std::function<void(quint64 save)> start;
        /// Returns when the save under way is done; its ended() may follow or not.
        std::function<void()> wait;
    };

    SaveSchedule(Clock& clock, Actions actions)
        : clock_(clock)
        , actions_(std::move(actions)) {}

    /// The state differs from what was saved last.
    void changed();
    /// That save is done. A save that flush() has waited for may be named, too.
    void ended(quint64 save, bool succeeded);
    /// Returns when everything is saved, as far as it can be. For the end of the program.
    void flush();

  private:
    void proceed();
    void start();
    void waitForSave();

    Clock& clock_;
    const Actions actions_;
    // Of the changes not in a save yet.
    std::optional<Clock::Duration> firstChange_;
    Clock::Duration due_{0};
    std::optional<quint64> underWay_;
    bool hasFailed_ = false; ///< the newest save
    quint64 newest_ = 0;
    std::unique_ptr<Timer> timer_;
};

} // namespace quorel
