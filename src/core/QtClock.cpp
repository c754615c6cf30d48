#include "core/QtClock.h"

#include <QTimer>

namespace quorel {

namespace {

class QtClockTimer final : public Timer {
  public:
    QtClockTimer(Clock::Duration interval, Clock::Repeat repeat, std::function<void()> action) {
        using namespace std::chrono;
        timer_->setTimerType(Qt::PreciseTimer);
        timer_->setSingleShot(repeat == Clock::Repeat::Once);
        // Never early: a completion checked before its moment would only have to wait again.
        timer_->setInterval(ceil<milliseconds>(interval));
        QObject::connect(timer_, &QTimer::timeout, timer_, std::move(action));
        timer_->start();
    }
    ~QtClockTimer() override {
        timer_->stop();
        timer_->deleteLater(); // this may be running inside its action
    }

  private:
    QTimer* timer_ = new QTimer;
};

} // namespace

Clock::Duration QtClock::now() const {
    return std::chrono::steady_clock::now().time_since_epoch();
}

std::unique_ptr<Timer> QtClock::startTimer(Duration interval, Repeat repeat,
                                           std::function<void()> action) {
    return std::make_unique<QtClockTimer>(interval, repeat, std::move(action));
}

void QtClock::post(std::function<void()> action) {
    QMetaObject::invokeMethod(&context_, std::move(action), Qt::QueuedConnection);
}

} // namespace quorel
