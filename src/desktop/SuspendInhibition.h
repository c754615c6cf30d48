#pragma once

#include <QDBusConnection>
#include <QObject>
#include <functional>
#include <optional>

namespace quorel {

class PlayerController;

/// Keeps the desktop from suspending an idle machine while music plays. Asks the power management
/// or the session of the desktop, whichever answers; without either nothing happens. It never waits
/// for an answer, and the bus lets go of what a program held that ended. Main thread.
class SuspendInhibition {
  public:
    /// The controller outlives this.
    explicit SuspendInhibition(PlayerController& controller);

    void start(const QDBusConnection& bus = QDBusConnection::sessionBus());

  private:
    struct Held {
        std::size_t service;
        quint32 cookie;
    };

    void follow();
    void inhibit(std::size_t service);
    void release();
    void call(std::size_t service, const char* method, const QVariantList& arguments,
              const std::function<void(std::optional<quint32>)>& answered);

    PlayerController& controller_;
    QDBusConnection bus_{QString()};
    QObject context_;       ///< of the connections and calls
    bool isAsking_ = false; ///< until the answer is there
    bool isBehind_ = false; ///< something has changed since it was asked
    std::optional<Held> held_;
};

} // namespace quorel
