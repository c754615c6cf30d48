#include "player/ControllerSoak.h"

#include <algorithm>
#include <memory>

namespace quorel::test {

using P = PlayerController;

ToldView::ToldView(P& player, const std::function<void()>& told)
    : player_(player) {
    tabsEdited();
    QObject::connect(&player, &P::playlistsEdited, &context_, [this] { tabsEdited(); });
    QObject::connect(&player, &P::tracksEdited, &context_,
                     [this](const QUuid& id, const TracksEdit& edit) { edited(id, edit); });
    QObject::connect(&player, &P::trackDataChanged, &context_,
                     [this](const QUuid& id, const std::vector<RowRange>& changed) {
                         const QList<Track>& tracks = player_.findPlaylist(id)->tracks;
                         for (const RowRange& range : changed)
                             for (qsizetype i = range.first; i < range.first + range.count; ++i)
                                 rows_.at(id).at(std::size_t(i)) = rowFor(tracks.at(i));
                     });
    show("tabs", &P::playlistsEdited, [&player] {
        std::vector<std::pair<QUuid, QString>> tabs;
        for (qsizetype i = 0; i < player.playlistCount(); ++i)
            tabs.emplace_back(player.playlistAt(i).id, player.playlistAt(i).name);
        return tabs;
    });
    show("shown tab", &P::activePlaylistChanged, [&player] { return player.activePlaylistID(); });
    show("selection", &P::selectionChanged, [&player] { return player.selection().ids(); });
    show("search", &P::searchTextChanged, [&player] { return player.searchText(); });
    show("playing", &P::playingTrackChanged, [&player] {
        const Track* const track = player.playingTrack();
        return track ? std::optional(rowFor(*track)) : std::nullopt;
    });
    show("transport", &P::transportChanged, [&player] {
        return std::tuple(player.playback().isPlaying(), player.playback().isLoaded(),
                          player.canPlayNext(), player.canPlayPrevious(), player.plannedNextID());
    });
    show("undo", &P::undoChanged, [&player] {
        return std::tuple(player.removalUndoAvailable(), player.closedPlaylistUndoAvailable(),
                          player.renameUndoAvailable(), player.closedPlaylistName(),
                          player.renamedPlaylistName());
    });
    show("activity", &P::activityChanged, [&player] { return player.activity(); });
    show("settings", &P::settingsChanged,
         [&player] { return std::pair(player.settings(), player.fullscreenActive()); });
    // These come when all edits are told.
    for (const auto signal : {&P::searchTextChanged, &P::selectionChanged, &P::playingTrackChanged,
                              &P::transportChanged, &P::undoChanged, &P::activityChanged})
        QObject::connect(&player, signal, &context_, told);
}

template <class Signal, class Read>
void ToldView::show(const char* name, Signal signal, Read read) {
    auto seen = std::make_shared<decltype(read())>(read());
    QObject::connect(&player_, signal, &context_, [seen, read] { *seen = read(); });
    parts_.push_back({name, [seen, read] { return *seen == read(); }});
}

ToldView::Rows ToldView::rowsFor(const Playlist& playlist) {
    Rows rows;
    std::ranges::transform(playlist.tracks, std::back_inserter(rows), rowFor);
    return rows;
}

/// New tabs are read as they are, closed ones forgotten.
void ToldView::tabsEdited() {
    std::map<QUuid, Rows> rows;
    for (qsizetype i = 0; i < player_.playlistCount(); ++i) {
        const Playlist& playlist = player_.playlistAt(i);
        const auto known = rows_.find(playlist.id);
        rows[playlist.id] = known == rows_.end() ? rowsFor(playlist) : std::move(known->second);
    }
    rows_ = std::move(rows);
}

void ToldView::edited(const QUuid& playlist, const TracksEdit& edit) {
    const Playlist& after = *player_.findPlaylist(playlist);
    replay(edit, rows_.at(playlist), after);
}

void ToldView::replay(const TracksEdit& edit, Rows& rows, const Playlist& after) const {
    if (edit.kind == TracksEdit::Kind::Inserted) {
        for (const RowRange& range : edit.ranges)
            for (qsizetype row = range.first; row < range.first + range.count; ++row)
                rows.insert(rows.begin() + row, rowFor(after.tracks.at(row)));
        return;
    }
    Rows moved;
    qsizetype gap = edit.gap;
    for (auto range = edit.ranges.rbegin(); range != edit.ranges.rend(); ++range) {
        const auto first = rows.begin() + range->first;
        moved.insert(moved.begin(), first, first + range->count);
        rows.erase(first, first + range->count);
        gap -= std::clamp<qsizetype>(edit.gap - range->first, 0, range->count);
    }
    if (edit.kind == TracksEdit::Kind::Moved)
        rows.insert(rows.begin() + gap, moved.begin(), moved.end());
}

bool ToldView::areRowsCurrent() const {
    return qsizetype(rows_.size()) == player_.playlistCount() &&
           std::ranges::all_of(rows_, [this](const auto& entry) {
               const Playlist* const playlist = player_.findPlaylist(entry.first);
               return playlist && entry.second == rowsFor(*playlist);
           });
}

std::string ToldView::differences() const {
    std::string names = areRowsCurrent() ? "" : "rows ";
    for (const Part& part : parts_)
        names += part.isCurrent() ? "" : part.name + std::string(" ");
    return names;
}

} // namespace quorel::test
