#include "player/SaveSchedule.h"

#include <algorithm>

namespace quorel {

void SaveSchedule::changed() {
    const auto now = clock_.now();
    if (!firstChange_)
        firstChange_ = now;
    due_ = std::min(now + kAfterLast, *firstChange_ + kAfterFirst);
    proceed();
}

void SaveSchedule::ended(quint64 save, bool succeeded) {
    if (underWay_ != save)
        return;
    underWay_.reset();
    hasFailed_ = !succeeded;
    proceed();
}

void SaveSchedule::flush() {
    waitForSave();
    if (firstChange_ || hasFailed_) {
        start();
        waitForSave();
    }
}

void SaveSchedule::waitForSave() {
    if (underWay_) {
        actions_.wait();
        underWay_.reset();
    }
}

// A timer that runs already is left alone, as changes come far more often than saves: where it is
// too early, another one follows.
void SaveSchedule::proceed() {
    if (!firstChange_ || underWay_ || timer_)
        return;
    const auto left = due_ - clock_.now();
    if (left <= Clock::Duration::zero()) {
        start();
        return;
    }
    timer_ = clock_.startTimer(left, Clock::Repeat::Once, [this] {
        timer_.reset();
        proceed();
    });
}

void SaveSchedule::start() {
    firstChange_.reset();
    hasFailed_ = false;
    underWay_ = ++newest_;
    actions_.start(newest_);
}

} // namespace quorel
