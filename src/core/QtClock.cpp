#include "core/QtClock.h"

#include <sys/eventfd.h>
#include <unistd.h>

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

QtClock::QtClock()
    : wake_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
    , notifier_(wake_, QSocketNotifier::Read) {
    QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [this] { runPosted(); });
}

QtClock::~QtClock() {
    notifier_.setEnabled(false);
    close(wake_);
}

Clock::Duration QtClock::now() const {
    return std::chrono::steady_clock::now().time_since_epoch();
}

std::unique_ptr<Timer> QtClock::startTimer(Duration interval, Repeat repeat,
                                           std::function<void()> action) {
    return std::make_unique<QtClockTimer>(interval, repeat, std::move(action));
}

void QtClock::post(std::function<void()> action) {
    const std::lock_guard lock(mutex_);
    posted_.push_back(std::move(action));
    if (posted_.size() == 1) { // else the loop has been woken already
        const uint64_t one = 1;
        [[maybe_unused]] const auto written = write(wake_, &one, sizeof one);
    }
}

// One by one, as an action may turn a loop of its own, which then goes on with those behind it.
void QtClock::runPosted() {
    std::size_t left = 0;
    {
        const std::lock_guard lock(mutex_);
        left = posted_.size();
    }
    for (std::function<void()> action; left > 0 && takePosted(action); --left) {
        action();
    }
}

bool QtClock::takePosted(std::function<void()>& action) {
    const std::lock_guard lock(mutex_);
    if (posted_.empty()) {
        return false;
    }
    action = std::move(posted_.front());
    posted_.pop_front();
    if (posted_.empty()) {
        uint64_t count = 0;
        [[maybe_unused]] const auto drained = read(wake_, &count, sizeof count);
    }
    return true;
}

} // namespace quorel
