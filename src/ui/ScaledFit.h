#pragma once

#include "core/Clock.h"

#include <QSize>
#include <memory>

class QLabel;
class QMainWindow;

namespace quorel {

/// Brings the whole interface to another size, and its window with it. While it moves, a picture of
/// the interface is stretched; the controls themselves are laid out once, at the end.
class ScaledFit {
  public:
    /// Both outlive it.
    ScaledFit(Clock& clock, QMainWindow& window);
    ~ScaledFit();

    /// 0.5..1.5; at once where it cannot or should not be seen moving.
    void setScale(double scale, bool animated);
    bool isMoving() const { return timer_ != nullptr; }

  private:
    class Picture;

    void step();
    void finish();
    QSize sizeAt(double scale) const;

    Clock& clock_;
    QMainWindow& window_;
    std::unique_ptr<Picture> picture_;
    std::unique_ptr<Timer> timer_;
    Clock::Duration start_{0};
    double from_ = 1;
    double to_ = 1;
    QSize fromSize_;
};

} // namespace quorel
