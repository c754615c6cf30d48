#pragma once

#include <QDBusConnection>
#include <QVariantMap>
#include <functional>

namespace quorel {

class MprisPlayer;
class PlayerController;

/// The player on the session bus, as org.mpris.MediaPlayer2.quorel: what media keys, lock screens
/// and panels of the desktop show and control. Main thread.
class Mpris {
  public:
    /// `quit` ends the program; the controller outlives this.
    Mpris(PlayerController& controller, std::function<void()> quit);
    ~Mpris();
    Mpris(const Mpris&) = delete;
    Mpris& operator=(const Mpris&) = delete;

    /// Offers the player on the bus. Waits for the bus, so call it when the window has been drawn.
    /// Where there is no bus nothing happens.
    void start(QDBusConnection bus = QDBusConnection::sessionBus());
    bool isOffered() const { return !name_.isEmpty(); }

  private:
    /// An interface and the values that were last told of it.
    struct Told {
        const QObject* adaptor;
        const char* interface;
        QVariantMap values;
    };

    void watch();
    /// Tells in the next turn of the event loop, once for all that has changed by then.
    void tellSoon();
    void tell();
    void tellChanges(Told& told);

    PlayerController& controller_;
    QObject object_; ///< carries the interfaces
    MprisPlayer* player_;
    std::vector<Told> told_;
    QDBusConnection bus_;
    QString name_;
    bool willTell_ = false;
    bool hasJumped_ = false;
};

} // namespace quorel
