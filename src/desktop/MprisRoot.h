#pragma once

#include <QDBusAbstractAdaptor>
#include <QStringList>
#include <functional>

namespace quorel {

class PlayerController;

/// The interface org.mpris.MediaPlayer2: the program as a whole. Main thread.
class MprisRoot final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.mpris.MediaPlayer2")
    Q_PROPERTY(bool CanQuit READ yes CONSTANT)
    Q_PROPERTY(bool CanRaise READ yes CONSTANT)
    Q_PROPERTY(bool CanSetFullscreen READ yes CONSTANT)
    Q_PROPERTY(bool HasTrackList READ no CONSTANT)
    Q_PROPERTY(QString Identity READ identity CONSTANT)
    Q_PROPERTY(QString DesktopEntry READ desktopEntry CONSTANT)
    Q_PROPERTY(QStringList SupportedUriSchemes READ uriSchemes CONSTANT)
    Q_PROPERTY(QStringList SupportedMimeTypes READ mimeTypes CONSTANT)
    Q_PROPERTY(bool Fullscreen READ fullscreen WRITE setFullscreen)

  public:
    MprisRoot(QObject& object, PlayerController& controller, std::function<void()> quit);

    bool yes() const { return true; }
    bool no() const { return false; }
    QString identity() const { return QStringLiteral("Quorel"); }
    QString desktopEntry() const { return QStringLiteral("quorel"); }
    QStringList uriSchemes() const { return {QStringLiteral("file")}; }
    QStringList mimeTypes() const;
    bool fullscreen() const;
    void setFullscreen(bool on);

    // The names are those of the interface.
    // NOLINTBEGIN(readability-identifier-naming,readability-redundant-access-specifiers)
  public Q_SLOTS:
    void Raise();
    void Quit();
    // NOLINTEND(readability-identifier-naming,readability-redundant-access-specifiers)

  private:
    PlayerController& controller_;
    const std::function<void()> quit_;
};

} // namespace quorel
