#include "ui/playlist/TabMenu.h"

#include "player/PlayerController.h"
#include "ui/playlist/TrackMenu.h"

namespace quorel {

TabMenu::TabMenu(PlayerController& player, const QUuid& playlist, QWidget* parent)
    : QMenu(parent)
    , player_(player)
    , playlist_(playlist) {
    setAttribute(Qt::WA_DeleteOnClose);
    const bool onTab = player.findPlaylist(playlist) != nullptr;
    if (onTab)
        addRenaming();
    addAction(menuIcon(Icon::Plus, *this), tr("New Playlist"), this,
              [this] { player_.addPlaylist(); });
    addAction(menuIcon(Icon::Load, *this), tr("Load Playlist"), this, &TabMenu::loadRequested);
    if (onTab) {
        addAction(menuIcon(Icon::Save, *this), tr("Save Playlist"), this,
                  [this] { Q_EMIT saveRequested(playlist_); });
        addSeparator();
        addMoving();
    }
    addSeparator();
    if (onTab)
        addEnding();
    if (player.closedPlaylistUndoAvailable())
        addAction(menuIcon(Icon::Undo, *this),
                  tr("Undo Close “%1”").arg(menuText(player.closedPlaylistName())), this,
                  [this] { player_.undoClosePlaylist(); });
}

void TabMenu::addRenaming() {
    addAction(menuIcon(Icon::Pencil, *this), tr("Rename…"), this,
              [this] { Q_EMIT renameRequested(playlist_); });
    if (player_.renameUndoAvailable())
        addAction(menuIcon(Icon::Undo, *this),
                  tr("Undo Rename to “%1”").arg(menuText(player_.renamedPlaylistName())), this,
                  [this] { player_.undoRenamePlaylist(); });
    addSeparator();
}

void TabMenu::addMoving() {
    const auto add = [this](Icon icon, const QString& text, qsizetype by) {
        addAction(menuIcon(icon, *this), text, this, [this, by] {
            player_.shiftPlaylist(playlist_, by);
        })->setEnabled(player_.canShiftPlaylist(playlist_, by));
    };
    add(Icon::ArrowLeft, tr("Move Left"), -1);
    add(Icon::ArrowRight, tr("Move Right"), 1);
}

void TabMenu::addEnding() {
    addAction(menuIcon(Icon::Trash, *this), tr("Clear Playlist"), this, [this] {
        Q_EMIT clearRequested(playlist_);
    })->setEnabled(!player_.findPlaylist(playlist_)->tracks.isEmpty());
    addAction(menuIcon(Icon::Close, *this), tr("Close Playlist"), this,
              [this] { Q_EMIT closeRequested(playlist_); });
}

} // namespace quorel
