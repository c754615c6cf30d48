#include "ui/Menus.h"

#include "player/PlayerController.h"
#include "ui/AboutDialog.h"
#include "ui/FileDialogs.h"
#include "ui/KeyFilter.h"
#include "update/ProductAddresses.h"
#include "update/UpdateChecker.h"

#include <QApplication>
#include <QDesktopServices>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>

namespace quorel {

namespace {

/// The focused control's own cut, copy, paste, by the name of its slot.
void sendToFocus(const char* slot) {
    if (QWidget* const focus = QApplication::focusWidget())
        QMetaObject::invokeMethod(focus, slot);
}

template <class Action>
QAction* add(QMenu& menu, const QString& text, const QKeySequence& shortcut, QObject* context,
             Action action) {
    QAction* const item = menu.addAction(text);
    item->setShortcut(shortcut);
    QObject::connect(item, &QAction::triggered, context, action);
    return item;
}

} // namespace

Menus::Menus(PlayerController& player, UpdateChecker& updates, QMenuBar& bar, QWidget& window)
    : QObject(&window)
    , player_(player)
    , updates_(updates)
    , window_(window) {
    fillFile(bar);
    fillEdit(bar);
    fillView(bar);
    fillPlayback(bar);
    fillHelp(bar);
    connect(&player, &PlayerController::transportChanged, this, &Menus::refresh);
    connect(&player, &PlayerController::undoChanged, this, &Menus::refresh);
    connect(&player, &PlayerController::tracksEdited, this, &Menus::refresh);
    connect(&player, &PlayerController::activePlaylistChanged, this, &Menus::refresh);
    connect(&player, &PlayerController::settingsChanged, this, &Menus::refresh);
    connect(&updates, &UpdateChecker::changed, this, &Menus::refresh);
    refresh();
}

void Menus::fillFile(QMenuBar& bar) {
    QMenu& menu = *bar.addMenu(tr("&File"));
    add(menu, tr("Add Files or Folders…"), QKeySequence(Qt::CTRL | Qt::Key_O), this,
        [this] { addFilesOrFolders(player_, &window_); });
    menu.addSeparator();
    add(menu, tr("New Playlist"), QKeySequence(Qt::CTRL | Qt::Key_N), this,
        [this] { player_.addPlaylist(); });
    add(menu, tr("Load Playlist (.m3u8)…"), QKeySequence(Qt::CTRL | Qt::Key_L), this,
        [this] { loadPlaylistFile(player_, &window_); });
    add(menu, tr("Save Playlist As…"), QKeySequence(Qt::CTRL | Qt::Key_S), this,
        [this] { savePlaylistFile(player_, player_.activePlaylistID(), &window_); });
    menu.addSeparator();
    add(menu, tr("Settings…"), QKeySequence(Qt::CTRL | Qt::Key_Comma), this,
        [this] { Q_EMIT settingsRequested(); });
    menu.addSeparator();
    add(menu, tr("Quit"), QKeySequence(Qt::CTRL | Qt::Key_Q), this, [this] {
        Q_EMIT quitRequested();
    })->setMenuRole(QAction::QuitRole);
}

void Menus::fillEdit(QMenuBar& bar) {
    QMenu& menu = *bar.addMenu(tr("&Edit"));
    undoRemove_ = add(menu, tr("Undo Remove Tracks"), QKeySequence::Undo, this,
                      [this] { player_.undoRemove(); });
    menu.addSeparator();
    editing_ = {add(menu, tr("Cut"), QKeySequence::Cut, this, [] { sendToFocus("cut"); }),
                add(menu, tr("Copy"), QKeySequence::Copy, this, [] { sendToFocus("copy"); }),
                add(menu, tr("Paste"), QKeySequence::Paste, this, [] { sendToFocus("paste"); })};
    menu.addSeparator();
    add(menu, tr("Select All"), QKeySequence::SelectAll, this, [this] {
        if (isEditingText())
            sendToFocus("selectAll");
        else
            player_.selectAll();
    });
    connect(qApp, &QApplication::focusChanged, this, &Menus::refreshEdit);
    refreshEdit();
}

void Menus::fillView(QMenuBar& bar) {
    QMenu& menu = *bar.addMenu(tr("&View"));
    showPlaylist_ = add(menu, QString(), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_P), this,
                        [this] { player_.togglePlaylistVisible(); });
    add(menu, tr("Next Visualization"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_V), this,
        [this] { player_.cycleVisualization(); });
    showPlaying_ = add(menu, tr("Show Playing Track"), QKeySequence(Qt::CTRL | Qt::Key_J), this,
                       [this] { Q_EMIT showPlayingRequested(); });
    menu.addSeparator();
    fullScreen_ = add(menu, tr("Full Screen"), QKeySequence(Qt::Key_F11), this,
                      [this] { player_.setFullScreen(!player_.fullscreenActive()); });
    fullScreen_->setCheckable(true);
}

void Menus::fillPlayback(QMenuBar& bar) {
    QMenu& menu = *bar.addMenu(tr("&Playback"));
    playPause_ =
        add(menu, QString(), QKeySequence(Qt::Key_Space), this, [this] { player_.playPause(); });
    stop_ = add(menu, tr("Stop"), {}, this, [this] { player_.stop(); });
    menu.addSeparator();
    next_ = add(menu, tr("Next Track"), QKeySequence(Qt::CTRL | Qt::Key_Right), this,
                [this] { player_.nextTrack(); });
    previous_ = add(menu, tr("Previous Track"), QKeySequence(Qt::CTRL | Qt::Key_Left), this,
                    [this] { player_.prevTrack(); });
}

void Menus::fillHelp(QMenuBar& bar) {
    QMenu& menu = *bar.addMenu(tr("&Help"));
    const auto open = [](const QUrl& address) { QDesktopServices::openUrl(address); };
    add(menu, tr("Quorel Help"), {}, this, [open] {
        open(supportMail());
    })->setEnabled(!supportMail().isEmpty());
    add(menu, tr("Quorel Website"), {}, this, [open] {
        open(website());
    })->setEnabled(!website().isEmpty());
    menu.addSeparator();
    checkForUpdates_ =
        add(menu, tr("Check for Updates…"), {}, this, [this] { updates_.check(true); });
    add(menu, tr("About Quorel"), {}, this, [this] {
        AboutDialog(&window_).exec();
    })->setMenuRole(QAction::AboutRole);
}

void Menus::refresh() {
    undoRemove_->setEnabled(player_.removalUndoAvailable());
    showPlaylist_->setText(player_.settings().showPlaylist ? tr("Hide Playlist")
                                                           : tr("Show Playlist"));
    showPlaylist_->setEnabled(!player_.fullscreenActive());
    showPlaying_->setEnabled(player_.playingPlaylistID().has_value());
    fullScreen_->setChecked(player_.fullscreenActive());
    const bool isLoaded = player_.playback().isLoaded();
    playPause_->setText(player_.playback().isPlaying() ? tr("Pause") : tr("Play"));
    playPause_->setEnabled(isLoaded || !player_.activePlaylist().tracks.isEmpty());
    stop_->setEnabled(isLoaded);
    next_->setEnabled(player_.canPlayNext());
    previous_->setEnabled(player_.canPlayPrevious());
    checkForUpdates_->setEnabled(updates_.isConfigured() && !updates_.isChecking());
}

void Menus::refreshEdit() {
    for (QAction* const action : editing_)
        action->setEnabled(isEditingText());
}

} // namespace quorel
