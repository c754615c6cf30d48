#pragma once

#include "core/Clock.h"

#include <QAbstractScrollArea>
#include <QPointer>

namespace quorel {

/// Scrolls a list by itself while something is dragged near its upper or lower edge, the faster the
/// nearer. Lengths are base units.
class PlaylistAutoScroller {
  public:
    /// `scrolled` is told of every step that moved the list. The clock outlives this.
    PlaylistAutoScroller(Clock& clock, std::function<void()> scrolled);

    /// The pointer is that far below the upper edge of the visible part of `anchor`.
    void update(double pointerY, double viewportHeight, QAbstractScrollArea* anchor);
    /// The drag has ended or left.
    void stop();

    /// Per step of 1/60 s, negative upwards; 0 while it stands still.
    double speed() const { return timer_ ? speed_ : 0; }
    /// How far this drag has scrolled, negative upwards.
    double accumulated() const { return accumulated_; }

    /// Per step, for a pointer at that place.
    static double speedAt(double pointerY, double viewportHeight);

  private:
    void halt();
    void step();

    Clock& clock_;
    const std::function<void()> scrolled_;
    QPointer<QAbstractScrollArea> anchor_;
    std::unique_ptr<Timer> timer_;
    double speed_ = 0;
    double remainder_ = 0; ///< of a pixel
    double accumulated_ = 0;
};

} // namespace quorel
