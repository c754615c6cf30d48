#include "ui/playlist/TrackMenu.h"

#include "player/PlayerController.h"
#include "ui/theme/Scale.h"
#include "ui/theme/Theme.h"

namespace quorel {

QIcon menuIcon(Icon icon, const QWidget& widget) {
    return {iconPixmap(icon, px(16), Theme::text, widget.devicePixelRatioF())};
}

QString menuText(QString name) {
    return name.replace(u'&', QLatin1String("&&"));
}

QString tipText(const QString& text) {
    return text.isEmpty() ? text : QStringLiteral("<p>%1</p>").arg(text.toHtmlEscaped());
}

TrackMenu::TrackMenu(PlayerController& player, const Track* track, bool fileIsMissing,
                     QWidget* parent)
    : QMenu(parent) {
    setAttribute(Qt::WA_DeleteOnClose);
    if (track) {
        addTrackItems(player, *track, fileIsMissing);
        addSeparator();
    }
    QAction* const showPlaying =
        addAction(tr("Show Playing Track"), this, &TrackMenu::showPlayingRequested);
    showPlaying->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_J));
    showPlaying->setEnabled(player.playingPlaylistID().has_value());
}

void TrackMenu::addTrackItems(PlayerController& player, const Track& track, bool fileIsMissing) {
    const QUuid id = track.id;
    const QUuid playlist = player.activePlaylistID();
    addAction(menuIcon(Icon::Play, *this), tr("Play"), this,
              [&player, id, playlist] { player.play(id, playlist); });
    QAction* const show = addAction(tr("Show in File Manager"), this,
                                    [this, path = track.path] { Q_EMIT showFileRequested(path); });
    QAction* const edit = addAction(menuIcon(Icon::Pencil, *this), tr("Edit Tags…"), this,
                                    [this, id] { Q_EMIT editTagsRequested(id); });
    QAction* const measure =
        addAction(tr("Recompute BPM"), this, [&player, id] { player.recomputeBPM(id); });
    for (QAction* const needsFile : {show, edit, measure})
        needsFile->setEnabled(!fileIsMissing);
    addSeparator();
    addAction(menuIcon(Icon::Remove, *this), tr("Remove from playlist"), this, [&player] {
        player.removeSelected();
    })->setEnabled(!player.selection().isEmpty());
}

} // namespace quorel
