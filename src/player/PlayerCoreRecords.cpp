// The records, and everything that keeps something by their rows.
#include "model/Path.h"
#include "player/PlayerCore.h"

#include <algorithm>

namespace quorel {

namespace {

/// Lets the event loop turn between two slices.
constexpr auto kSearchPause = std::chrono::milliseconds(1);

} // namespace

std::optional<PlayerController::Core::Place> PlayerController::Core::placeOf(const QUuid& track) {
    for (qsizetype i = 0; i < tabs.size(); ++i)
        if (const auto row = tabs.at(i).rowOf(track))
            return Place{tabs.find(tabs.at(i).id()), *row};
    return std::nullopt;
}

const VisibleRows& PlayerController::Core::visibleRows() {
    if (!visible)
        visible = search.find(tabs.active(), searchText);
    return *visible;
}

/// In slices, so that the window goes on.
void PlayerController::Core::prepareSearch() {
    searchTimer.reset();
    if (!search.prepareSome(tabs.active()))
        searchTimer =
            clock.startTimer(kSearchPause, Clock::Repeat::Once, [this] { prepareSearch(); });
}

void PlayerController::Core::tabSwitched() {
    changes.selection |= !selection.ids().isEmpty();
    selection.clear();
    search.reset();
    visible.reset();
    changes.activePlaylist = true;
    changes.transport = true; // what may follow while nothing plays
    saver.changed();
}

void PlayerController::Core::insertTracks(TrackList& list, qsizetype row, QList<Track> tracks) {
    if (tracks.isEmpty())
        return;
    const auto cursorRow = playback.cursorRow();
    const TracksEdit edit = list.insert(row, std::move(tracks));
    std::vector<QUuid> added;
    for (const RowRange& range : edit.ranges)
        for (qsizetype i = 0; i < range.count; ++i)
            added.push_back(list.tracks().at(range.first + i).id);
    playback.tracksAdded(added, list.id());
    listEdited(list, edit, cursorRow);
    loader.load();
}

QUuid PlayerController::Core::addTab(const QString& name, QList<Track> tracks) {
    const QUuid id = tabs.create(name.isEmpty() ? tabs.nextName() : name, std::move(tracks));
    changes.playlists = true;
    tabSwitched();
    if (!tabs.active().isEmpty())
        loader.load();
    return id;
}

void PlayerController::Core::listEdited(TrackList& list, const TracksEdit& edit,
                                        std::optional<qsizetype> cursorRow) {
    if (!edit)
        return;
    if (list.id() == tabs.activeId()) {
        search.rowsEdited(edit);
        visible.reset();
        if (edit.kind == TracksEdit::Kind::Removed)
            changes.selection |= selection.keepOnly(list);
    }
    playback.edited(list, edit, cursorRow);
    changes.transport = true; // what may follow
    if (playback.playingTrack())
        measure(); // what follows
    changes.edits.push_back({list.id(), edit});
    saver.changed();
}

void PlayerController::Core::dataChanged(const TrackList& list, std::vector<RowRange> rows) {
    if (list.id() == tabs.activeId()) {
        search.tracksChanged(rows);
        if (!trimmedOfBlanks(searchText).isEmpty())
            visible.reset();
    }
    const auto playingRow =
        playback.playingTrack() ? list.rowOf(*playback.playingTrack()) : std::nullopt;
    const auto isPlaying = [&](const RowRange& range) {
        return *playingRow >= range.first && *playingRow < range.first + range.count;
    };
    if (playingRow && std::ranges::any_of(rows, isPlaying)) {
        playing = list.tracks().at(*playingRow);
        changes.playingTrack = true;
    }
    changes.data.push_back({list.id(), std::move(rows)});
}

void PlayerController::Core::importFiles(FileImport::Paths paths, ImportTarget target) {
    const Operation operation(*this);
    if (target.playlist.isNull())
        target.playlist = tabs.active().id();
    import.request(std::move(paths), target);
}

/// What was collected goes where it was meant to, unless that is gone.
void PlayerController::Core::land(FileImport::Found found) {
    const Operation operation(*this);
    changes.activity = true;
    std::optional<std::pair<QUuid, QUuid>> first; // track and playlist
    for (Playlist& playlist : found.playlists) {
        const QUuid id = addTab(playlist.name, std::move(playlist.tracks));
        if (!first && !tabs.active().isEmpty())
            first = {tabs.active().tracks().front().id, id};
    }
    if (!found.tracks.isEmpty()) {
        const QUuid firstTrack = found.tracks.front().id;
        if (found.target.kind == ImportTarget::Kind::NewPlaylist) {
            first = {firstTrack, addTab(found.folderName, std::move(found.tracks))};
        } else if (TrackList* const list = tabs.find(found.target.playlist)) {
            const bool atEnd = found.target.kind == ImportTarget::Kind::Playlist;
            insertTracks(*list, atEnd ? list->size() : found.target.row, std::move(found.tracks));
            first = {firstTrack, list->id()};
        }
    }
    if (found.target.playFirst && first)
        playback.play(first->first, first->second);
}

} // namespace quorel
