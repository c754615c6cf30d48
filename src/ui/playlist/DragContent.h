#pragma once

#include "player/FileImport.h"

#include <QMimeData>
#include <QStringList>
#include <QUuid>

namespace quorel {

class PlayerController;

/// Rows of a playlist that are being dragged. To other programs they are files, whose addresses are
/// only made when someone asks for them: there may be a hundred thousand.
class DraggedTracks final : public QMimeData {
    Q_OBJECT

  public:
    DraggedTracks(const QUuid& playlist, QList<QUuid> tracks, QStringList paths);

    const QUuid& playlist() const { return playlist_; }
    /// In the order of their rows.
    const QList<QUuid>& tracks() const { return tracks_; }
    const QStringList& paths() const { return paths_; }

    QStringList formats() const override;

  protected:
    QVariant retrieveData(const QString& format, QMetaType type) const override;

  private:
    const QUuid playlist_;
    const QList<QUuid> tracks_;
    const QStringList paths_;
};

/// A tab that is being dragged. It means nothing to other programs.
class DraggedPlaylist final : public QMimeData {
    Q_OBJECT

  public:
    explicit DraggedPlaylist(const QUuid& id);

    const QUuid& id() const { return id_; }

  private:
    const QUuid id_;
};

/// Whether files are being dragged; their names are not looked at.
bool hasFiles(const QMimeData& dragged);

/// Adds what was dropped there, where a gap is one of the active playlist. Files are collected
/// first; rows from another playlist come as they stand there. False where there is nothing to add.
bool addDropped(PlayerController& player, const QMimeData& dropped, const ImportTarget& target);

} // namespace quorel
