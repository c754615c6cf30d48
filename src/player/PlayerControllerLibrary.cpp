// The controller's operations on playlists, their tracks, and files.
#include "media/M3U8.h"
#include "model/FileUri.h"
#include "model/Path.h"
#include "player/PlayerController.h"
#include "player/PlayerCore.h"

namespace quorel {

namespace {

std::optional<QString> textOrAbsent(const QString& text) {
    return text.isEmpty() ? std::nullopt : std::optional(text);
}

void setTags(Track& track, const ID3Writer::Tags& tags) {
    track.title = tags.title;
    track.artist = tags.artist;
    track.album = textOrAbsent(tags.album);
    track.albumArtist = textOrAbsent(tags.albumArtist);
    track.genre = textOrAbsent(tags.genre);
    track.year = textOrAbsent(tags.year);
    track.trackNumber = tags.trackNumber;
    track.trackTotal = tags.trackTotal;
    track.discNumber = tags.discNumber;
    track.discTotal = tags.discTotal;
    track.composer = textOrAbsent(tags.composer);
    track.comment = textOrAbsent(tags.comment);
}

} // namespace

// --- Playlists -----------------------------------------------------------------------------------

void PlayerController::setActivePlaylist(const QUuid& id) {
    const Core::Operation operation(*core_);
    if (core_->tabs.activate(id))
        core_->tabSwitched();
}

void PlayerController::addPlaylist(const QString& name) {
    const Core::Operation operation(*core_);
    core_->addTab(name, {});
}

void PlayerController::renamePlaylist(const QUuid& id, const QString& name) {
    const Core::Operation operation(*core_);
    if (!core_->tabs.rename(id, name))
        return;
    core_->changes.playlists = core_->changes.undo = true;
    core_->saver.changed();
}

void PlayerController::undoRenamePlaylist() {
    const Core::Operation operation(*core_);
    core_->changes.undo = renameUndoAvailable();
    if (!core_->tabs.undoRename())
        return;
    core_->changes.playlists = true;
    core_->saver.changed();
}

void PlayerController::closePlaylist(const QUuid& id) {
    const Core::Operation operation(*core_);
    if (!core_->tabs.find(id))
        return;
    const bool wasActive = id == activePlaylistID();
    core_->playback.aboutToClose(id);
    core_->tabs.close(id);
    core_->changes.playlists = core_->changes.undo = true;
    if (wasActive)
        core_->tabSwitched();
    core_->saver.changed();
}

void PlayerController::undoClosePlaylist() {
    const Core::Operation operation(*core_);
    if (const auto placeholder = core_->tabs.placeholder())
        core_->playback.aboutToClose(*placeholder);
    if (!core_->tabs.undoClose())
        return;
    core_->changes.playlists = core_->changes.undo = true;
    core_->tabSwitched();
}

void PlayerController::clearPlaylist(const QUuid& id) {
    const Core::Operation operation(*core_);
    TrackList* const list = core_->tabs.find(id);
    if (!list)
        return;
    core_->playback.aboutToEmpty(id);
    const auto cursorRow = core_->playback.cursorRow();
    core_->listEdited(*list, list->clear(), cursorRow);
}

void PlayerController::movePlaylist(const QUuid& id, qsizetype toIndex) {
    const Core::Operation operation(*core_);
    if (!core_->tabs.move(id, toIndex))
        return;
    core_->changes.playlists = true;
    core_->saver.changed();
}

void PlayerController::shiftPlaylist(const QUuid& id, qsizetype by) {
    const Core::Operation operation(*core_);
    if (!core_->tabs.shift(id, by))
        return;
    core_->changes.playlists = true;
    core_->saver.changed();
}

bool PlayerController::canShiftPlaylist(const QUuid& id, qsizetype by) const {
    return core_->tabs.canShift(id, by);
}

// --- Tracks of the active playlist ---------------------------------------------------------------

void PlayerController::removeSelected() {
    const Core::Operation operation(*core_);
    TrackList& list = core_->tabs.active();
    const auto cursorRow = core_->playback.cursorRow();
    const std::vector<qsizetype> rows = list.rowsOf(core_->selection.ids().ids());
    const TracksEdit edit = core_->removals.remove(list, rows);
    if (!edit)
        return;
    core_->listEdited(list, edit, cursorRow);
    core_->selection.clear();
    core_->changes.selection = core_->changes.undo = true;
}

void PlayerController::undoRemove() {
    const Core::Operation operation(*core_);
    auto removal = core_->removals.takeNewest();
    if (!removal)
        return;
    core_->changes.undo = true;
    TrackList* const list = core_->tabs.find(removal->playlist);
    if (!list)
        return;
    std::vector<QUuid> tracks;
    for (const Track& track : removal->removed.tracks)
        tracks.push_back(track.id);
    const auto cursorRow = core_->playback.cursorRow();
    const TracksEdit edit = list->restore(std::move(removal->removed));
    core_->playback.tracksAdded(tracks, list->id());
    core_->listEdited(*list, edit, cursorRow);
}

void PlayerController::clearActivePlaylist() {
    clearPlaylist(activePlaylistID());
}

void PlayerController::moveTrack(qsizetype fromIndex, qsizetype toInsertionIndex) {
    moveTracks({fromIndex}, toInsertionIndex);
}

void PlayerController::moveTracks(const std::vector<qsizetype>& rows, qsizetype toInsertionIndex) {
    const Core::Operation operation(*core_);
    TrackList& list = core_->tabs.active();
    if (rows.empty() || rows.front() < 0 || rows.back() >= list.size())
        return;
    const auto cursorRow = core_->playback.cursorRow();
    core_->listEdited(list, list.move(rows, toInsertionIndex), cursorRow);
}

void PlayerController::handleTrackClick(const QUuid& id, bool shift, bool cmd) {
    const Core::Operation operation(*core_);
    core_->selection.click(core_->tabs.active(), id, shift, cmd);
    core_->changes.selection = true;
}

void PlayerController::selectOnly(const QUuid& id) {
    handleTrackClick(id, false, false);
}

void PlayerController::selectAll() {
    const Core::Operation operation(*core_);
    core_->selection.selectAll(core_->tabs.active(), visibleTracks());
    core_->changes.selection = true;
}

void PlayerController::prepareSearch() {
    core_->prepareSearch();
}

void PlayerController::setSearchText(const QString& text) {
    const Core::Operation operation(*core_);
    if (text == core_->searchText)
        return;
    core_->searchText = text;
    core_->visible.reset();
    core_->changes.searchText = true;
}

// --- Files ---------------------------------------------------------------------------------------

void PlayerController::addFiles(const QStringList& files) {
    addFiles(files, activePlaylistID());
}

void PlayerController::addFiles(const QStringList& files, const QUuid& playlistID) {
    const Core::Operation operation(*core_);
    if (TrackList* const list = core_->tabs.find(playlistID))
        core_->insertTracks(*list, list->size(), Track::fromPaths(files));
}

void PlayerController::insertFiles(const QStringList& files, qsizetype at) {
    const Core::Operation operation(*core_);
    core_->insertTracks(core_->tabs.active(), at, Track::fromPaths(files));
}

std::optional<QUuid> PlayerController::newPlaylist(const QStringList& files, const QString& name) {
    const Core::Operation operation(*core_);
    if (files.isEmpty())
        return std::nullopt;
    return core_->addTab(name, Track::fromPaths(files));
}

void PlayerController::importPaths(const QStringList& paths, const ImportTarget& target) {
    core_->importFiles([paths] { return paths; }, target);
}

void PlayerController::importUriList(const QByteArray& list, const ImportTarget& target) {
    core_->importFiles([list] { return pathsOfUriList(list); }, target);
}

void PlayerController::loadPlaylist(const QString& file, PlaylistFileDone done) {
    core_->collecting.post(
        SerialQueue::Priority::Ordinary,
        [file](const std::stop_token&) { return M3U8::importPlaylist(file); },
        [this, file, done = std::move(done)](const std::optional<M3U8::Import>& read) {
            if (read) {
                const Core::Operation operation(*core_);
                core_->addTab(read->name, Track::fromPaths(read->paths));
            }
            if (done)
                done(read ? std::nullopt
                          : std::optional(Error{11, tr("The playlist “%1” could not be read. It "
                                                       "has to be a text in UTF-8.")
                                                        .arg(pathForDisplay(file))}));
        });
}

void PlayerController::savePlaylist(const QUuid& id, const QString& file, PlaylistFileDone done) {
    const Playlist* const playlist = findPlaylist(id);
    if (!playlist)
        return;
    core_->writer.post(
        SerialQueue::Priority::Ordinary,
        [playlist = *playlist, file](const std::stop_token&) {
            return M3U8::exportPlaylist(playlist, file);
        },
        [file, done = std::move(done)](bool written) {
            if (done)
                done(written
                         ? std::nullopt
                         : std::optional(Error{12, tr("The playlist could not be written to “%1”.")
                                                       .arg(pathForDisplay(file))}));
        });
}

void PlayerController::cancelActivity() {
    const Core::Operation operation(*core_);
    const auto shown = activity();
    if (!shown)
        return;
    switch (shown->kind) {
    case Activity::Kind::Collecting:
        core_->import.cancel();
        break;
    case Activity::Kind::ReadingTags:
        core_->loader.cancel();
        break;
    case Activity::Kind::Analysing:
        core_->analyses.cancelAsked();
        break;
    }
    core_->changes.activity = true;
}

std::optional<Error> PlayerController::saveTags(const QUuid& trackID, const ID3Writer::Tags& tags) {
    const Core::Operation operation(*core_);
    const auto place = core_->placeOf(trackID);
    if (!place)
        return std::nullopt;
    const QString path = place->list->tracks().at(place->row).path;
    if (auto error = ID3Writer::writeTags(path, tags))
        return error;
    core_->loader.tagsSaved(path);
    place->list->change(place->row, [&tags](Track& track) { setTags(track, tags); });
    core_->dataChanged(*place->list, {{place->row, 1}});
    core_->saver.changed();
    return std::nullopt;
}

void PlayerController::countFramesDropped(const QUuid& trackID, std::function<void(qint64)> done) {
    const auto place = core_->placeOf(trackID);
    if (!place)
        return;
    core_->files.post(
        SerialQueue::Priority::Ordinary,
        [path = place->list->tracks().at(place->row).path](const std::stop_token&) {
            return ID3Writer::framesDropped(path);
        },
        std::move(done));
}

void PlayerController::loadMissingMetadata() {
    const Core::Operation operation(*core_);
    core_->loader.load();
}

void PlayerController::recomputeBPM(const QUuid& trackID) {
    const Core::Operation operation(*core_);
    if (const auto place = core_->placeOf(trackID))
        core_->analyses.measureTempo(place->list->tracks().at(place->row), core_->settings);
}

void PlayerController::clearTrimCache() {
    const Core::Operation operation(*core_);
    core_->trimsOutdated();
    core_->measure();
    core_->saver.changed();
}

} // namespace quorel
