#include "ui/playlist/DragContent.h"

#include "model/FileUri.h"
#include "player/PlayerController.h"

#include <utility>

namespace quorel {

namespace {

QString uriList() {
    return QStringLiteral("text/uri-list");
}

void addRows(PlayerController& player, const QStringList& paths, const ImportTarget& target) {
    switch (target.kind) {
    case ImportTarget::Kind::Playlist:
        player.addFiles(paths, target.playlist);
        break;
    case ImportTarget::Kind::Gap:
        player.insertFiles(paths, target.row);
        break;
    case ImportTarget::Kind::NewPlaylist:
        player.newPlaylist(paths);
        break;
    }
}

} // namespace

DraggedTracks::DraggedTracks(const QUuid& playlist, QList<QUuid> tracks, QStringList paths)
    : playlist_(playlist)
    , tracks_(std::move(tracks))
    , paths_(std::move(paths)) {}

QStringList DraggedTracks::formats() const {
    return {uriList()};
}

QVariant DraggedTracks::retrieveData(const QString& format, QMetaType type) const {
    if (format != uriList())
        return QMimeData::retrieveData(format, type);
    QByteArray list;
    for (const QString& path : paths_)
        list += fileUri(path).toLatin1() + "\r\n";
    return list;
}

DraggedPlaylist::DraggedPlaylist(const QUuid& id)
    : id_(id) {
    setData(QStringLiteral("application/x-quorel-playlist"), id.toByteArray());
}

bool hasFiles(const QMimeData& dragged) {
    return dragged.hasFormat(uriList());
}

bool addDropped(PlayerController& player, const QMimeData& dropped, const ImportTarget& target) {
    if (const auto* const rows = qobject_cast<const DraggedTracks*>(&dropped)) {
        addRows(player, rows->paths(), target);
        return true;
    }
    const QByteArray list = dropped.data(uriList());
    if (!namesFiles(list))
        return false;
    player.importUriList(list, target);
    return true;
}

} // namespace quorel
