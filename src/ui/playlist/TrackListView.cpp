#include "ui/playlist/TrackListView.h"

#include "player/PlayerController.h"
#include "player/TrackSearch.h"
#include "ui/playlist/MissingFiles.h"
#include "ui/playlist/TrackDelegate.h"
#include "ui/playlist/TrackListModel.h"
#include "ui/playlist/TrackMenu.h"
#include "ui/theme/Scale.h"
#include "ui/theme/Theme.h"

#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QStyleHints>

namespace quorel {

TrackListView::TrackListView(PlayerController& player, Clock& clock, MissingFiles& missing,
                             QWidget* parent)
    : QListView(parent)
    , player_(player)
    , clock_(clock)
    , missing_(missing)
    , model_(new TrackListModel(player, this))
    , delegate_(new TrackDelegate(player, missing, *model_, this))
    , scroller_(clock, [this] { moveGap(pointer_); }) {
    setModel(model_);
    setItemDelegate(delegate_);
    setUniformItemSizes(true);
    setSelectionMode(NoSelection);
    setAutoScroll(false);
    setFrameShape(NoFrame);
    setMouseTracking(true);
    setAcceptDrops(true);
    viewport()->setAttribute(Qt::WA_Hover);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setAccessibleName(tr("Tracks"));
    QPalette colours = palette();
    colours.setColor(QPalette::Base, Theme::listBlack);
    setPalette(colours);

    const auto repaint = [this] { viewport()->update(); };
    connect(&player, &PlayerController::selectionChanged, this, repaint);
    connect(&player, &PlayerController::playingTrackChanged, this, repaint);
    connect(&missing, &MissingFiles::changed, this, repaint);
    connect(&player, &PlayerController::settingsChanged, this, [this](SettingsParts which) {
        if (!which.testFlag(SettingsPart::Display))
            return;
        delegate_->refreshFont();
        findPlace(nullptr);
    });
    connect(&player, &PlayerController::activePlaylistChanged, this, [this] {
        missing_.forget();
        findPlace(nullptr);
    });
    connect(&player, &PlayerController::tracksEdited, this,
            [this](const QUuid& playlist, const TracksEdit& edit) {
                if (playlist == player_.activePlaylistID())
                    findPlace(&edit);
            });
    connect(&player, &PlayerController::trackDataChanged, this, [this](const QUuid& playlist) {
        if (playlist == player_.activePlaylistID() && player_.visibleTracks().isFiltered())
            findPlace(nullptr);
    });
    connect(&player, &PlayerController::searchTextChanged, this, [this] {
        places_[player_.activePlaylistID()].top = {};
        findPlace(nullptr);
        if (!player_.visibleTracks().isFiltered())
            scrollTo(currentIndex(), PositionAtCenter);
    });
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this, &TrackListView::remember);
}

QSize TrackListView::sizeHint() const {
    return {px(400), px(300)};
}

QSize TrackListView::minimumSizeHint() const {
    return {px(240), px(72)};
}

// --- Keeping the place ---------------------------------------------------------------------------

void TrackListView::remember() {
    if (findingPlace_)
        return;
    Place place;
    const int height = delegate_->rowHeight();
    const int above = verticalScrollBar()->value();
    const QModelIndex top = model_->index(above / height);
    if (const Track* const track = model_->trackAt(top); track && above > 0) {
        place.top = track->id;
        place.topRow = model_->playlistRow(top.row());
        place.offset = above % height;
    }
    if (const Track* const track = model_->trackAt(currentIndex())) {
        place.current = track->id;
        place.currentRow = model_->playlistRow(currentIndex().row());
    }
    places_[player_.activePlaylistID()] = place;
}

qsizetype TrackListView::rowOf(const QUuid& track, qsizetype rowBefore,
                               const TracksEdit* edit) const {
    if (const auto row = player_.rowOf(track, player_.activePlaylistID()))
        return *row;
    return edit ? edit->gapAfter(rowBefore) : rowBefore;
}

/// After a change: the same track stays at the upper edge, or, where it is gone, the next one, and
/// so does the current row.
void TrackListView::findPlace(const TracksEdit* edit) {
    {
        const QScopedValueRollback finding(findingPlace_, true);
        const Place place = places_.value(player_.activePlaylistID());
        doItemsLayout();
        const int rows = model_->rowCount();
        if (!place.current.isNull() && rows > 0) {
            const int row = model_->shownRow(rowOf(place.current, place.currentRow, edit));
            setCurrent(model_->index(std::min(row, rows - 1)));
        }
        int above = 0;
        if (!place.top.isNull())
            above =
                model_->shownRow(rowOf(place.top, place.topRow, edit)) * delegate_->rowHeight() +
                place.offset;
        verticalScrollBar()->setValue(above);
    }
    remember();
    viewport()->update();
}

/// In another size of the interface other rows would be seen.
void TrackListView::changeEvent(QEvent* event) {
    {
        const QScopedValueRollback finding(findingPlace_, true);
        QListView::changeEvent(event);
    }
    if (event->type() == QEvent::StyleChange)
        findPlace(nullptr);
}

void TrackListView::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    QListView::currentChanged(current, previous);
    remember();
}

/// No row's size depends on what it says, so that there is nothing to lay out.
void TrackListView::dataChanged(const QModelIndex&, const QModelIndex&, const QList<int>&) {
    viewport()->update();
}

// --- Mouse ---------------------------------------------------------------------------------------

void TrackListView::setCurrent(const QModelIndex& index) {
    selectionModel()->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
}

void TrackListView::play(const QModelIndex& index) {
    if (const Track* const track = model_->trackAt(index))
        player_.play(track->id, player_.activePlaylistID());
}

void TrackListView::mousePressEvent(QMouseEvent* event) {
    const QPoint at = event->position().toPoint();
    const QModelIndex index = indexAt(at);
    const Track* const track = model_->trackAt(index);
    pressedAt_.reset();
    selectAtRelease_ = false;
    if (!track || event->button() != Qt::LeftButton)
        return;
    pressedAt_ = at;
    rangeStart_ = {};
    setCurrent(index);
    const bool shift = event->modifiers().testFlag(Qt::ShiftModifier);
    // A press on what is selected may begin to drag all of it.
    selectAtRelease_ = !shift && player_.selection().contains(track->id);
    if (!selectAtRelease_)
        player_.handleTrackClick(track->id, shift,
                                 event->modifiers().testFlag(Qt::ControlModifier));
}

void TrackListView::mouseMoveEvent(QMouseEvent* event) {
    if (!pressedAt_ || !event->buttons().testFlag(Qt::LeftButton))
        return;
    const QPoint way = event->position().toPoint() - *pressedAt_;
    if (way.manhattanLength() < QGuiApplication::styleHints()->startDragDistance())
        return;
    pressedAt_.reset();
    selectAtRelease_ = false;
    startDragOfSelection();
}

void TrackListView::mouseReleaseEvent(QMouseEvent* event) {
    const Track* const track = pressedAt_ ? model_->trackAt(indexAt(*pressedAt_)) : nullptr;
    if (track && selectAtRelease_ && event->button() == Qt::LeftButton)
        player_.handleTrackClick(track->id, false,
                                 event->modifiers().testFlag(Qt::ControlModifier));
    pressedAt_.reset();
    selectAtRelease_ = false;
}

void TrackListView::mouseDoubleClickEvent(QMouseEvent* event) {
    pressedAt_.reset();
    if (event->button() == Qt::LeftButton)
        play(indexAt(event->position().toPoint()));
}

void TrackListView::contextMenuEvent(QContextMenuEvent* event) {
    const bool byMouse = event->reason() == QContextMenuEvent::Mouse;
    const QModelIndex index = byMouse ? indexAt(event->pos()) : currentIndex();
    const Track* const track = model_->trackAt(index);
    if (track) {
        setCurrent(index);
        if (!player_.selection().contains(track->id))
            player_.selectOnly(track->id);
    }
    auto* const menu =
        new TrackMenu(player_, track, track && missing_.isMissing(track->path), this);
    connect(menu, &TrackMenu::editTagsRequested, this, &TrackListView::editTagsRequested);
    connect(menu, &TrackMenu::showFileRequested, this, &TrackListView::showFileRequested);
    connect(menu, &TrackMenu::showPlayingRequested, this, &TrackListView::showPlayingTrack);
    menu->popup(byMouse ? event->globalPos()
                        : viewport()->mapToGlobal(visualRect(index).bottomLeft()));
}

} // namespace quorel
