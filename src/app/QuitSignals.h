#pragma once

#include <QSocketNotifier>
#include <functional>

namespace quorel {

/// Being told by the system or a terminal to end (SIGTERM, SIGINT, SIGHUP) quits as a user would,
/// so that everything is saved. One object at a time.
class QuitSignals {
  public:
    explicit QuitSignals(std::function<void()> quit);
    ~QuitSignals();
    QuitSignals(const QuitSignals&) = delete;
    QuitSignals& operator=(const QuitSignals&) = delete;

  private:
    std::function<void()> quit_;
    QSocketNotifier notifier_;
};

} // namespace quorel
