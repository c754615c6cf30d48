#pragma once

#include <QDBusAbstractAdaptor>
#include <QDBusObjectPath>
#include <QVariantMap>

namespace quorel {

class PlayerController;

/// The interface org.mpris.MediaPlayer2.Player: what plays and how. Times are microseconds. Values
/// come from what the controller has published, so that reading them waits for nothing. Main
/// thread.
class MprisPlayer final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.mpris.MediaPlayer2.Player")
    Q_PROPERTY(QString PlaybackStatus READ playbackStatus)
    Q_PROPERTY(QString LoopStatus READ loopStatus WRITE setLoopStatus)
    Q_PROPERTY(bool Shuffle READ shuffle WRITE setShuffle)
    Q_PROPERTY(double Volume READ volume WRITE setVolume)
    Q_PROPERTY(QVariantMap Metadata READ metadata)
    Q_PROPERTY(qlonglong Position READ position)
    Q_PROPERTY(double Rate READ rate WRITE setRate)
    Q_PROPERTY(double MinimumRate READ rate CONSTANT)
    Q_PROPERTY(double MaximumRate READ rate CONSTANT)
    Q_PROPERTY(bool CanGoNext READ canGoNext)
    Q_PROPERTY(bool CanGoPrevious READ canGoPrevious)
    Q_PROPERTY(bool CanPlay READ canPlay)
    Q_PROPERTY(bool CanPause READ isLoaded)
    Q_PROPERTY(bool CanSeek READ isLoaded)
    Q_PROPERTY(bool CanControl READ canControl CONSTANT)

  public:
    MprisPlayer(QObject& object, PlayerController& controller);

    QString playbackStatus() const;
    QString loopStatus() const;
    void setLoopStatus(const QString& status);
    bool shuffle() const;
    void setShuffle(bool on);
    double volume() const;
    void setVolume(double volume);
    QVariantMap metadata() const;
    qlonglong position() const;
    double rate() const { return 1; }
    void setRate(double) {} // there is one rate only, and to ask for it is no error
    bool canGoNext() const;
    bool canGoPrevious() const;
    bool canPlay() const;
    bool isLoaded() const;
    bool canControl() const { return true; }

    // The names are those of the interface.
    // NOLINTBEGIN(readability-identifier-naming,readability-redundant-access-specifiers)
  public Q_SLOTS:
    void Next();
    void Previous();
    void Pause();
    void PlayPause();
    void Stop();
    void Play();
    void Seek(qlonglong offset);
    void SetPosition(const QDBusObjectPath& track, qlonglong position);
    void OpenUri(const QString& uri);

  Q_SIGNALS:
    void Seeked(qlonglong position);
    // NOLINTEND(readability-identifier-naming,readability-redundant-access-specifiers)

  private:
    qlonglong length() const;
    void seekTo(qlonglong position);

    PlayerController& controller_;
};

} // namespace quorel
