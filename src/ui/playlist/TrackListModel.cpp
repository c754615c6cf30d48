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

QVariant TrackListModel::data(const QModelIndex& index, int role) const {
    if (role != Qt::DisplayRole && role != Qt::ToolTipRole && role != Qt::AccessibleTextRole)
        return {};
    const qsizetype row = player_.visibleTracks().rowAt(index.row());
    const Track& track = player_.activePlaylist().tracks.at(row);
    if (role != Qt::AccessibleTextRole)
        return rowLabel(track);
    return QStringLiteral("%1. %2, %3")
        .arg(row + 1)
        .arg(rowLabel(track), formatTime(track.duration));
}

void TrackListModel::showOthers() {
    beginResetModel();
    count_ = int(player_.visibleTracks().size());
    endResetModel();
}

/// Tags that were read may have changed which rows a search shows.
void TrackListModel::rowsChanged() {
    if (player_.visibleTracks().size() != count_)
        showOthers();
    else if (count_ > 0)
        Q_EMIT dataChanged(index(0), index(count_ - 1));
}

} // namespace quorel
