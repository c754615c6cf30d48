#include "ui/playlist/TrackListView.h"

#include "player/PlayerController.h"
#include "player/TrackSearch.h"
#include "ui/playlist/TrackDelegate.h"
#include "ui/playlist/TrackListModel.h"
#include "ui/theme/Scale.h"
#include "ui/theme/Theme.h"

#include <QMouseEvent>
#include <QPainter>

namespace quorel {

TrackListView::TrackListView(PlayerController& player, QWidget* parent)
    : QListView(parent)
    , player_(player) {
    setModel(new TrackListModel(player, this));
    setItemDelegate(new TrackDelegate(player, this));
    setUniformItemSizes(true);
    setSelectionMode(NoSelection);
    setFrameShape(NoFrame);
    setMouseTracking(true);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setAccessibleName(tr("Tracks"));
    QPalette colours = palette();
    colours.setColor(QPalette::Base, Theme::listBlack);
    setPalette(colours);
    const auto repaint = [this] { viewport()->update(); };
    connect(&player, &PlayerController::selectionChanged, this, repaint);
    connect(&player, &PlayerController::playingTrackChanged, this, repaint);
    connect(&player, &PlayerController::settingsChanged, this, [this](SettingsParts which) {
        if (which.testFlag(SettingsPart::Display))
            doItemsLayout();
    });
}

QSize TrackListView::minimumSizeHint() const {
    return {px(240), px(120)};
}

const Track* TrackListView::trackAt(const QModelIndex& index) const {
    if (!index.isValid())
        return nullptr;
    return &player_.activePlaylist().tracks.at(player_.visibleTracks().rowAt(index.row()));
}

void TrackListView::play(const QModelIndex& index) {
    if (const Track* const track = trackAt(index))
        player_.play(track->id, player_.activePlaylistID());
}

void TrackListView::mousePressEvent(QMouseEvent* event) {
    const QModelIndex index = indexAt(event->position().toPoint());
    QListView::mousePressEvent(event);
    if (const Track* const track = trackAt(index); track && event->button() == Qt::LeftButton)
        player_.handleTrackClick(track->id, event->modifiers().testFlag(Qt::ShiftModifier),
                                 event->modifiers().testFlag(Qt::ControlModifier));
}

void TrackListView::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        play(indexAt(event->position().toPoint()));
}

void TrackListView::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        play(currentIndex());
        break;
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
        player_.removeSelected();
        break;
    default:
        QListView::keyPressEvent(event);
    }
}

void TrackListView::paintEvent(QPaintEvent* event) {
    QListView::paintEvent(event);
    if (!player_.activePlaylist().tracks.isEmpty())
        return;
    QPainter painter(viewport());
    painter.scale(uiScale(), uiScale());
    painter.setPen(Theme::textDim);
    painter.setFont(Theme::font(Theme::TextRole::Body));
    painter.drawText(
        QRectF(0, 0, viewport()->width() / uiScale(), viewport()->height() / uiScale()),
        Qt::AlignCenter, tr("Playlist is empty.\nAdd files, a folder, or just drag music here."));
}

} // namespace quorel
