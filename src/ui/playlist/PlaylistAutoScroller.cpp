#include "ui/playlist/PlaylistAutoScroller.h"

#include "ui/theme/Scale.h"

#include <QScrollBar>
#include <algorithm>
#include <cmath>

namespace quorel {

namespace {

constexpr double kEdge = 30;
constexpr double kLowestViewport = 60; // lower ones are all edge
constexpr double kFastest = 13;
constexpr std::chrono::nanoseconds kStep(1'000'000'000 / 60);

} // namespace

PlaylistAutoScroller::PlaylistAutoScroller(Clock& clock, std::function<void()> scrolled)
    : clock_(clock)
    , scrolled_(std::move(scrolled)) {}

double PlaylistAutoScroller::speedAt(double pointerY, double viewportHeight) {
    if (viewportHeight <= kLowestViewport)
        return 0;
    if (pointerY < kEdge)
        return -kFastest * std::min((kEdge - pointerY) / kEdge, 1.0);
    const double lowerEdge = viewportHeight - kEdge;
    return pointerY > lowerEdge ? kFastest * std::min((pointerY - lowerEdge) / kEdge, 1.0) : 0;
}

void PlaylistAutoScroller::update(double pointerY, double viewportHeight,
                                  QAbstractScrollArea* anchor) {
    anchor_ = anchor;
    speed_ = speedAt(pointerY, viewportHeight);
    if (speed_ == 0)
        halt();
    else if (!timer_)
        timer_ = clock_.startTimer(kStep, Clock::Repeat::Always, [this] { step(); });
}

void PlaylistAutoScroller::stop() {
    halt();
    accumulated_ = 0;
}

void PlaylistAutoScroller::halt() {
    timer_.reset();
    remainder_ = 0;
}

void PlaylistAutoScroller::step() {
    if (!anchor_) {
        halt();
        return;
    }
    QScrollBar& bar = *anchor_->verticalScrollBar();
    const double wanted = remainder_ + speed_ * uiScale();
    const int before = bar.value();
    bar.setValue(before + static_cast<int>(wanted));
    remainder_ = wanted - std::trunc(wanted);
    if (bar.value() == before)
        return;
    accumulated_ += (bar.value() - before) / uiScale();
    scrolled_();
}

} // namespace quorel
