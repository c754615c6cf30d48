#include "core/ManualClock.h"

namespace quorel {

struct ManualClock::Entry {
    Duration deadline;
    uint64_t order;
    Duration interval;
    Repeat repeat;
    std::function<void()> action;
};

class ManualClock::Handle final : public Timer {
  public:
    Handle(std::shared_ptr<Schedule> schedule, std::shared_ptr<Entry> entry)
        : schedule_(std::move(schedule))
        , entry_(std::move(entry)) {}
    ~Handle() override {
        entry_->repeat = Repeat::Once; // in case its action is running now
        schedule_->erase({entry_->deadline, entry_->order});
    }

  private:
    std::shared_ptr<Schedule> schedule_;
    std::shared_ptr<Entry> entry_;
};

std::unique_ptr<Timer> ManualClock::startTimer(Duration interval, Repeat repeat,
                                               std::function<void()> action) {
    auto entry = std::make_shared<Entry>(
        Entry{now_ + interval, nextOrder_++, interval, repeat, std::move(action)});
    schedule_->emplace(std::pair{entry->deadline, entry->order}, entry);
    return std::make_unique<Handle>(schedule_, entry);
}

void ManualClock::post(std::function<void()> action) {
    const std::lock_guard lock(postedMutex_);
    posted_.push_back(std::move(action));
}

std::optional<Clock::Duration> ManualClock::nextDeadline() const {
    if (schedule_->empty()) {
        return std::nullopt;
    }
    return schedule_->begin()->first.first;
}

bool ManualClock::takePosted(std::function<void()>& action) {
    const std::lock_guard lock(postedMutex_);
    if (posted_.empty()) {
        return false;
    }
    action = std::move(posted_.front());
    posted_.pop_front();
    return true;
}

void ManualClock::runPosted() {
    std::function<void()> action;
    while (takePosted(action)) {
        action();
    }
}

void ManualClock::advanceTo(Duration time) {
    runPosted();
    while (!schedule_->empty() && schedule_->begin()->first.first <= time) {
        const auto entry = schedule_->begin()->second;
        schedule_->erase(schedule_->begin());
        now_ = std::max(now_, entry->deadline);
        const auto action = entry->action; // the timer may be destroyed by its own action
        if (entry->repeat == Repeat::Always) {
            entry->deadline += entry->interval;
            schedule_->emplace(std::pair{entry->deadline, entry->order}, entry);
        }
        action();
        runPosted();
    }
    now_ = std::max(now_, time);
}

} // namespace quorel
