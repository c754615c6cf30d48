#include "ui/ScaledFit.h"

#include "ui/theme/ApplyTheme.h"
#include "ui/theme/Motion.h"
#include "ui/theme/Scale.h"

#include <QLayout>
#include <QMainWindow>
#include <QPainter>
#include <algorithm>

namespace quorel {

using namespace std::chrono_literals;

namespace {

constexpr auto kLength = Clock::Duration(180ms);
constexpr auto kFrame = 16ms;

/// Slow at both ends.
double eased(double t) {
    return t * t * (3 - 2 * t);
}

} // namespace

/// Covers the window with what it showed, stretched to its size.
class ScaledFit::Picture final : public QWidget {
  public:
    explicit Picture(QMainWindow& window)
        : QWidget(&window)
        , shown_(window.grab()) {
        setAttribute(Qt::WA_OpaquePaintEvent);
        setGeometry(window.rect());
        show();
        raise();
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawPixmap(rect(), shown_);
    }

  private:
    const QPixmap shown_;
};

ScaledFit::ScaledFit(Clock& clock, QMainWindow& window)
    : clock_(clock)
    , window_(window) {}

ScaledFit::~ScaledFit() = default;

QSize ScaledFit::sizeAt(double scale) const {
    return (QSizeF(fromSize_) * (scale / from_)).toSize();
}

void ScaledFit::setScale(double scale, bool animated) {
    if (timer_)
        finish();
    if (scale == uiScale())
        return;
    from_ = uiScale();
    to_ = scale;
    fromSize_ = window_.size();
    if (!animated || !window_.isVisible() || reducedAnimation()) {
        finish();
        return;
    }
    picture_ = std::make_unique<Picture>(window_);
    window_.setMinimumSize(1, 1);
    window_.layout()->setEnabled(false);
    start_ = clock_.now();
    timer_ = clock_.startTimer(kFrame, Clock::Repeat::Always, [this] { step(); });
}

void ScaledFit::step() {
    const double t = std::chrono::duration<double>(clock_.now() - start_) /
                     std::chrono::duration<double>(kLength);
    if (t >= 1) {
        finish();
        return;
    }
    if (!(window_.windowState() & (Qt::WindowMaximized | Qt::WindowFullScreen)))
        window_.resize(sizeAt(from_ + (to_ - from_) * eased(t)));
    picture_->setGeometry(window_.rect());
}

void ScaledFit::finish() {
    timer_.reset();
    window_.setUpdatesEnabled(false);
    setInterfaceScale(to_);
    window_.setMinimumSize(0, 0); // from now on the layout's again
    window_.layout()->setEnabled(true);
    window_.layout()->activate();
    if (!(window_.windowState() & (Qt::WindowMaximized | Qt::WindowFullScreen)))
        window_.resize(sizeAt(to_).expandedTo(window_.minimumSizeHint()));
    picture_.reset();
    window_.setUpdatesEnabled(true);
}

} // namespace quorel
