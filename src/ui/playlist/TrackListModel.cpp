#include "ui/playlist/TrackListModel.h"

#include "model/TimeText.h"
#include "player/PlayerController.h"
#include "player/TrackSearch.h"
#include "ui/texts/Texts.h"

namespace quorel {

TrackListModel::TrackListModel(PlayerController& player, QObject* parent)
    : QAbstractListModel(parent)
    , player_(player)
    , count_(int(player.visibleTracks().size())) {
    const auto isShown = [this](const QUuid& playlist) {
        return playlist == player_.activePlaylistID();
    };
    connect(&player, &PlayerController::activePlaylistChanged, this, &TrackListModel::showOthers);
    connect(&player, &PlayerController::searchTextChanged, this, &TrackListModel::showOthers);
    connect(&player, &PlayerController::tracksEdited, this, [this, isShown](const QUuid& playlist) {
        if (isShown(playlist))
            showOthers();
    });
    connect(&player, &PlayerController::trackDataChanged, this,
            [this, isShown](const QUuid& playlist) {
                if (isShown(playlist))
                    rowsChanged();
            });
}

int TrackListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count_;
}

const Track* TrackListModel::trackAt(const QModelIndex& index) const {
    // Between a change and the reset that follows it the view may ask for rows that are gone.
    const VisibleRows& visible = player_.visibleTracks();
    if (!index.isValid() || index.row() >= visible.size())
        return nullptr;
    return &player_.activePlaylist().tracks.at(visible.rowAt(index.row()));
}

qsizetype TrackListModel::playlistRow(int shownRow) const {
    return player_.visibleTracks().rowAt(shownRow);
}

int TrackListModel::shownRow(qsizetype playlistRow) const {
    return int(player_.visibleTracks().indexFrom(playlistRow));
}

qsizetype TrackListModel::playlistGap(int shownGap) const {
    const VisibleRows& visible = player_.visibleTracks();
    if (visible.size() == 0)
        return player_.activePlaylist().tracks.size();
    return shownGap == 0 ? visible.rowAt(0) : visible.rowAt(shownGap - 1) + 1;
}

QVariant TrackListModel::data(const QModelIndex& index, int role) const {
    const Track* const track = trackAt(index);
    if (!track)
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return rowLabel(*track);
    case Qt::AccessibleTextRole:
        return spokenText(*track, playlistRow(index.row()));
    default:
        return {};
    }
}

/// What is selected is the controller's, so that the view's own accessibility does not know of it.
QString TrackListModel::spokenText(const Track& track, qsizetype row) const {
    QStringList parts = {tr("%1. %2").arg(row + 1).arg(rowLabel(track))};
    if (track.duration)
        parts += formatTime(track.duration);
    if (track.id == player_.playingTrackID())
        parts += tr("playing");
    if (player_.selection().contains(track.id))
        parts += tr("selected");
    return parts.join(QStringLiteral(", "));
}

void TrackListModel::showOthers() {
    beginResetModel();
    count_ = int(player_.visibleTracks().size());
    endResetModel();
}

/// Tags that were read may have changed which rows a search shows.
void TrackListModel::rowsChanged() {
    if (player_.visibleTracks().isFiltered())
        showOthers();
    else if (count_ > 0)
        Q_EMIT dataChanged(index(0), index(count_ - 1));
}

} // namespace quorel
