// What is dragged out of the track list, within it and into it, and the painting of where it goes.
#include "player/PlayerController.h"
#include "player/TrackSearch.h"
#include "ui/playlist/DragContent.h"
#include "ui/playlist/DragPreview.h"
#include "ui/playlist/TrackDelegate.h"
#include "ui/playlist/TrackListModel.h"
#include "ui/playlist/TrackListView.h"
#include "ui/texts/Texts.h"
#include "ui/theme/BasePainter.h"
#include "ui/theme/Icons.h"
#include "ui/theme/Surfaces.h"
#include "ui/theme/Theme.h"

#include <QDrag>
#include <QDragEnterEvent>
#include <QScrollBar>
#include <algorithm>

namespace quorel {

/// The rows that are seen to be selected: others may be hidden by the search.
void TrackListView::startDragOfSelection() {
    QList<QUuid> tracks;
    QStringList paths;
    const IdSet& selected = player_.selection();
    QString label;
    for (int row = 0; row < model_->rowCount(); ++row) {
        const Track& track = *model_->trackAt(model_->index(row));
        if (!selected.contains(track.id))
            continue;
        if (tracks.isEmpty())
            label = rowLabel(track);
        tracks += track.id;
        paths += track.path;
    }
    if (tracks.isEmpty())
        return;
    if (tracks.size() > 1)
        label = trackCountText(tracks.size());
    auto* const drag = new QDrag(viewport());
    drag->setPixmap(dragPreview(label, devicePixelRatioF()));
    drag->setHotSpot({-px(12), -px(4)});
    drag->setMimeData(new DraggedTracks(player_.activePlaylistID(), tracks, paths));
    // Never moved out: a file manager would take the files away.
    drag->exec(Qt::CopyAction);
}

void TrackListView::moveGap(const QPoint& pointer) {
    pointer_ = pointer;
    const double rows =
        static_cast<double>(pointer.y() + verticalScrollBar()->value()) / delegate_->rowHeight();
    gap_ = std::clamp(qRound(rows), 0, model_->rowCount());
    viewport()->update();
}

void TrackListView::endDragOver() {
    scroller_.stop();
    gap_.reset();
    viewport()->update();
}

void TrackListView::dragEnterEvent(QDragEnterEvent* event) {
    dragMoveEvent(event);
}

void TrackListView::dragMoveEvent(QDragMoveEvent* event) {
    if (!hasFiles(*event->mimeData())) {
        event->ignore();
        return;
    }
    const QPoint pointer = event->position().toPoint();
    moveGap(pointer);
    scroller_.update(pointer.y() / uiScale(), viewport()->height() / uiScale(), this);
    event->acceptProposedAction();
}

void TrackListView::dragLeaveEvent(QDragLeaveEvent*) {
    endDragOver();
}

void TrackListView::dropEvent(QDropEvent* event) {
    if (!hasFiles(*event->mimeData()))
        return;
    moveGap(event->position().toPoint());
    const int gap = *gap_;
    endDragOver();
    event->acceptProposedAction();
    drop(*event->mimeData(), gap);
}

void TrackListView::drop(const QMimeData& dragged, int gap) {
    const qsizetype row = model_->playlistGap(gap);
    const QUuid& playlist = player_.activePlaylistID();
    const auto* const own = qobject_cast<const DraggedTracks*>(&dragged);
    if (!own || own->playlist() != playlist) {
        addDropped(player_, dragged,
                   {.kind = ImportTarget::Kind::Gap, .playlist = playlist, .row = row});
        return;
    }
    std::vector<qsizetype> rows;
    for (const QUuid& track : own->tracks())
        if (const auto at = player_.rowOf(track, playlist))
            rows.push_back(*at);
    std::ranges::sort(rows);
    player_.moveTracks(rows, row);
}

void TrackListView::paintEvent(QPaintEvent* event) {
    QListView::paintEvent(event);
    BasePainter painter(viewport());
    if (model_->rowCount() == 0)
        paintEmpty(painter, baseRect(*viewport()));
    else if (gap_)
        paintGap(painter);
}

void TrackListView::paintEmpty(QPainter& painter, const QRectF& area) const {
    if (gap_) {
        const QRectF frame = area.adjusted(10, 10, -10, -10);
        painter.setPen(QPen(Theme::greenDim, 1.5, Qt::DashLine));
        painter.setBrush(Theme::faded(Theme::green, 0.05));
        painter.drawRoundedRect(frame, 8, 8);
    }
    const bool searching = !player_.activePlaylist().tracks.isEmpty();
    const QString text =
        searching ? tr("No track matches the search.")
                  : tr("Playlist is empty.\nAdd files, a folder, or just drag music here.");
    painter.setFont(Theme::font(Theme::TextRole::Body));
    const double height = painter.fontMetrics().lineSpacing() * (searching ? 1 : 2) + 4;
    constexpr double kSymbol = 36;
    const bool hasSymbol = area.height() > height + 2 * kSymbol + 20;
    QRectF place(area.left(), 0, area.width(), height);
    place.moveCenter(area.center() + QPointF(0, hasSymbol ? kSymbol / 2 : 0));
    if (hasSymbol)
        drawIcon(painter, searching ? Icon::Search : Icon::Playlist,
                 {area.center().x() - kSymbol / 2, place.top() - kSymbol - 12, kSymbol, kSymbol},
                 Theme::steelLight);
    painter.setPen(Theme::textDim);
    painter.drawText(place, Qt::AlignCenter, text);
}

/// A line of light with a bead at each end.
void TrackListView::paintGap(QPainter& painter) const {
    constexpr double kBead = 3;
    const QRectF area = baseRect(*viewport());
    const double y =
        std::clamp((*gap_ * delegate_->rowHeight() - verticalScrollBar()->value()) / uiScale(),
                   kBead + 1, area.height() - kBead - 1);
    const QLineF line(area.left() + 8, y, area.right() - 8, y);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(Theme::faded(Theme::green, 0.18), 7, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(line);
    painter.setPen(QPen(Theme::green, 2, Qt::SolidLine, Qt::FlatCap));
    painter.drawLine(QLineF(line.p1() + QPointF(kBead, 0), line.p2() - QPointF(kBead, 0)));
    painter.setBrush(Theme::listBlack);
    painter.drawEllipse(line.p1(), kBead, kBead);
    painter.drawEllipse(line.p2(), kBead, kBead);
}

} // namespace quorel
