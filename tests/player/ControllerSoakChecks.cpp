#include "model/Path.h"
#include "player/ControllerSoak.h"
#include "player/Insides.h"

#include <algorithm>

namespace quorel::test {

void ControllerSoak::check() const {
    ASSERT_GT(player_.playlistCount(), 0);
    ASSERT_TRUE(player_.playlistIndex(player_.activePlaylistID()));
    for (qsizetype i = 0; i < player_.playlistCount(); ++i) {
        const Playlist& playlist = player_.playlistAt(i);
        ASSERT_EQ(player_.playlistIndex(playlist.id), i);
        for (qsizetype row = 0; row < playlist.tracks.size(); ++row)
            ASSERT_EQ(player_.rowOf(playlist.tracks.at(row).id, playlist.id), row);
    }
    checkSelectionAndSearch();
    checkPlayback();
    checkShuffleOrder();
    ASSERT_EQ(view_.differences(), "");
}

void ControllerSoak::checkSelectionAndSearch() const {
    const Playlist& shown = player_.activePlaylist();
    for (const QUuid& id : player_.selection().ids())
        ASSERT_TRUE(player_.rowOf(id, shown.id));
    const QString text = trimmedOfBlanks(player_.searchText()).toString();
    std::vector<qint32> rows;
    for (qsizetype row = 0; row < shown.tracks.size(); ++row) {
        const Track& track = shown.tracks.at(row);
        for (const QString& field : {track.title, track.artist, track.album.value_or(QString())})
            if (field.contains(text, Qt::CaseInsensitive)) {
                rows.push_back(static_cast<qint32>(row));
                break;
            }
    }
    ASSERT_EQ(player_.visibleTracks(),
              text.isEmpty() ? VisibleRows(shown.tracks.size()) : VisibleRows(rows));
}

void ControllerSoak::checkPlayback() const {
    const auto id = player_.playingTrackID();
    const Track* const record = player_.playingTrack();
    ASSERT_EQ(record != nullptr, id.has_value());
    ASSERT_EQ(player_.playback().isLoaded(), id.has_value());
    ASSERT_TRUE(id || !player_.playback().isPlaying());
    if (id) {
        ASSERT_EQ(record->id, *id);
        const Playlist* const list = player_.findPlaylist(player_.playingPlaylistID());
        ASSERT_NE(list, nullptr);
        if (const auto row = player_.rowOf(*id, list->id)) {
            ASSERT_EQ(list->tracks.at(*row), *record);
        }
    }
    if (const auto next = player_.plannedNextID()) {
        ASSERT_TRUE(id);
        ASSERT_TRUE(player_.rowOf(*next, *player_.playingPlaylistID()));
    }
}

void ControllerSoak::checkShuffleOrder() const {
    const ShuffleOrder& order = PlayerControllerInsides::shuffleOrder(player_);
    const Playlist* const list = player_.findPlaylist(order.playlist());
    if (!list)
        return;
    std::vector<QUuid> living;
    std::ranges::copy_if(order.order(), std::back_inserter(living),
                         [&](const QUuid& id) { return player_.rowOf(id, list->id).has_value(); });
    std::vector<QUuid> listed;
    for (const Track& track : list->tracks)
        listed.push_back(track.id);
    ASSERT_TRUE(std::ranges::is_permutation(living, listed));
    ASSERT_LT(order.position(), qsizetype(order.order().size()));
}

} // namespace quorel::test
