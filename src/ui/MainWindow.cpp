#include "ui/MainWindow.h"

#include "player/PlayerController.h"
#include "ui/AppIcon.h"
#include "ui/FileDialogs.h"
#include "ui/KeyFilter.h"
#include "ui/Menus.h"
#include "ui/StatusBar.h"
#include "ui/UpdateBanner.h"
#include "ui/panel/PlayerPanel.h"
#include "ui/playlist/DragContent.h"
#include "ui/playlist/PlaylistArea.h"
#include "ui/playlist/TrackListView.h"
#include "ui/settings/SettingsView.h"
#include "ui/tags/TagEditorView.h"
#include "ui/texts/Texts.h"
#include "ui/theme/Scale.h"
#include "update/UpdateChecker.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QMenuBar>
#include <QMimeData>
#include <QVBoxLayout>
#include <QWindow>

namespace quorel {

namespace {

constexpr QSize kFirstSize(740, 640); // in base units, with the playlist
constexpr int kNoLimit = QWIDGETSIZE_MAX;

} // namespace

MainWindow::MainWindow(PlayerController& player, UpdateChecker& updates, Clock& clock)
    : player_(player)
    , content_(new QWidget(this))
    , banner_(new UpdateBanner(updates, content_))
    , panel_(new PlayerPanel(player, clock, content_))
    , playlist_(new PlaylistArea(player, clock, content_))
    , scaledFit_(clock, *this) {
    setAcceptDrops(true);
    auto* const menus = new Menus(player, updates, *menuBar(), *this);
    connect(menus, &Menus::quitRequested, this, &MainWindow::quitRequested);
    connect(menus, &Menus::settingsRequested, this, &MainWindow::showSettings);
    connect(menus, &Menus::showPlayingRequested, this, [this] {
        if (!player_.settings().showPlaylist)
            player_.togglePlaylistVisible();
        playlist_->list().showPlayingTrack();
    });
    connect(panel_, &PlayerPanel::settingsRequested, this, &MainWindow::showSettings);
    auto* const column = new QVBoxLayout(content_);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(banner_);
    column->addWidget(panel_);
    column->addWidget(playlist_, 1);
    column->addStretch(); // of a full screen, while the playlist is hidden
    column->addWidget(new StatusBar(player, clock, content_));
    setCentralWidget(content_);
    connect(playlist_, &PlaylistArea::addRequested, this,
            [this] { addFilesOrFolders(player_, this); });
    connect(playlist_, &PlaylistArea::loadRequested, this,
            [this] { loadPlaylistFile(player_, this); });
    connect(playlist_, &PlaylistArea::saveRequested, this,
            [this](const QUuid& playlist) { savePlaylistFile(player_, playlist, this); });
    connect(playlist_, &PlaylistArea::showFileRequested, this, &MainWindow::showFileRequested);
    connect(playlist_, &PlaylistArea::editTagsRequested, this, &MainWindow::editTags);
    new KeyFilter(player, this);
    connect(&player, &PlayerController::playingTrackChanged, this, &MainWindow::refreshTitle);
    refreshTitle();
    resize(px(kFirstSize.width()), px(kFirstSize.height()));
    playlist_->list().setFocus();
    player.attachWindow(this);
}

MainWindow::~MainWindow() {
    player_.attachWindow(nullptr);
}

void MainWindow::editTags(const QUuid& track) {
    auto* const editor = new TagEditorView(player_, track, this);
    editor->setAttribute(Qt::WA_DeleteOnClose);
    editor->open();
}

void MainWindow::refreshTitle() {
    const Track* const playing = player_.playingTrack();
    setWindowTitle(playing ? tr("%1 — Quorel").arg(isolated(rowLabel(*playing)))
                           : QStringLiteral("Quorel"));
}

bool MainWindow::canStayOnTop() {
    return !QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
}

void MainWindow::setAlwaysOnTop(bool onTop) {
    // The platform's window takes the hint over without being hidden and shown again.
    if (QWindow* const window = windowHandle())
        window->setFlag(Qt::WindowStaysOnTopHint, onTop);
    else
        setWindowFlag(Qt::WindowStaysOnTopHint, onTop);
}

/// Without the playlist only the width can be changed: the height is what the rest needs.
void MainWindow::limitHeight() {
    if (player_.settings().showPlaylist || isFullScreen()) {
        setMaximumHeight(kNoLimit);
        return;
    }
    const int height = minimumSizeHint().height();
    setMaximumHeight(height);
    if (!isMaximized())
        resize(width(), height);
}

void MainWindow::setPlaylistShown(bool shown, bool) {
    if (shown != playlist_->isHidden())
        return;
    const int before = height();
    const bool hadFocus = focusWidget() && playlist_->isAncestorOf(focusWidget());
    if (!shown)
        playlistHeight_ = qRound(playlist_->height() / uiScale());
    playlist_->setVisible(shown);
    layout()->activate();
    limitHeight();
    if (shown && !isMaximized() && !isFullScreen())
        resize(width(), before + px(std::max(playlistHeight_, 240)));
    if (hadFocus)
        panel_->setFocus();
    else if (shown && focusWidget() == panel_)
        playlist_->list().setFocus();
}

void MainWindow::setFullScreen(bool fullScreen) {
    setMaximumHeight(kNoLimit);
    setWindowState(windowState().setFlag(Qt::WindowFullScreen, fullScreen));
}

void MainWindow::setScale(double scale, bool animated) {
    setMaximumHeight(kNoLimit);
    scaledFit_.setScale(scale, animated);
    if (!scaledFit_.isMoving())
        limitHeight();
}

void MainWindow::setWordmarkIcon(bool shown) {
    hasWordmark_ = shown;
    if (wasPainted_)
        setWindowIcon(appIcon(shown));
}

void MainWindow::raiseWindow() {
    if (isMinimized())
        setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

void MainWindow::showSettings() {
    if (!settings_) {
        settings_ = new SettingsView(player_, canStayOnTop(), this);
        settings_->setAttribute(Qt::WA_DeleteOnClose);
    }
    settings_->show();
    settings_->raise();
    settings_->activateWindow();
}

void MainWindow::closeEvent(QCloseEvent* event) {
    event->accept();
    Q_EMIT closeRequested();
}

bool MainWindow::event(QEvent* event) {
    const bool isUsed = QMainWindow::event(event);
    // A banner came or went, or the scale has settled.
    if (event->type() == QEvent::LayoutRequest && !scaledFit_.isMoving())
        limitHeight();
    return isUsed;
}

void MainWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() != QEvent::WindowStateChange)
        return;
    const bool wasFull =
        static_cast<QWindowStateChangeEvent*>(event)->oldState().testFlag(Qt::WindowFullScreen);
    if (isFullScreen() && !wasFull)
        normalWidth_ = width();
    player_.fullScreenChanged(isFullScreen());
    limitHeight();
    // That kept the width of the full screen, which goes only now.
    if (wasFull && !isFullScreen() && !isMaximized() && !player_.settings().showPlaylist)
        resize(normalWidth_, height());
}

void MainWindow::paintEvent(QPaintEvent* event) {
    QMainWindow::paintEvent(event);
    if (std::exchange(wasPainted_, true))
        return;
    QMetaObject::invokeMethod(this, &MainWindow::settleIn, Qt::QueuedConnection);
}

/// Whatever would have held up the first picture.
void MainWindow::settleIn() {
    setWindowIcon(appIcon(hasWordmark_));
    Q_EMIT shownFirst();
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
    // Rows that are dragged about in the window are in a playlist already.
    if (hasFiles(*event->mimeData()) && !event->source())
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
    if (addDropped(player_, *event->mimeData(), {}))
        event->acceptProposedAction();
}

} // namespace quorel
