#pragma once

#include "core/Clock.h"

#include <QObject>

namespace quorel {

/// The program's clock: steady time and the Qt event loop of the thread that makes it.
class QtClock final : public Clock {
  public:
    Duration now() const override;
    [[nodiscard]] std::unique_ptr<Timer> startTimer(Duration interval, Repeat repeat,
                                                    std::function<void()> action) override;
    void post(std::function<void()> action) override;

  private:
    QObject context_; // what is posted dies with it
};

} // namespace quorel
