#pragma once

#include "model/Track.h"
#include "player/IdTable.h"
#include "player/TracksEdit.h"

#include <concepts>
#include <span>

namespace quorel {

/// Tracks taken out of a list, with the rows they had there, ascending.
struct RemovedTracks {
    std::vector<qsizetype> rows;
    QList<Track> tracks;
};

/// One playlist and where each of its tracks stands: looking up an id is constant in time, every
/// edit linear, however many rows it concerns. A track that comes with an id of the list gets a new
/// one. The record may be shared with a snapshot for saving; the next edit then copies it.
class TrackList {
    auto idAt() const {
        return [tracks = playlist_.tracks.constData()](IdTable::Place row) -> const QUuid& {
            return tracks[row].id;
        };
    }

  public:
    explicit TrackList(Playlist playlist);

    const Playlist& playlist() const { return playlist_; }
    const QUuid& id() const { return playlist_.id; }
    const QString& name() const { return playlist_.name; }
    const QList<Track>& tracks() const { return playlist_.tracks; }
    qsizetype size() const { return playlist_.tracks.size(); }
    bool isEmpty() const { return playlist_.tracks.isEmpty(); }

    bool contains(const QUuid& id) const { return rowOf(id).has_value(); }
    std::optional<qsizetype> rowOf(const QUuid& id) const;
    /// Ascending; ids that are not in the list are left out.
    std::vector<qsizetype> rowsOf(std::span<const QUuid> ids) const;

    void rename(const QString& name) { playlist_.name = name; }

    /// Inserts before that row, which is limited to 0..size().
    TracksEdit insert(qsizetype row, QList<Track> block);
    /// Takes the rows out, which are ascending and within the list.
    TracksEdit remove(const std::vector<qsizetype>& rows, RemovedTracks& removed);
    /// Puts removed tracks back at the rows they had, or at the end where the list is shorter now.
    TracksEdit restore(RemovedTracks removed);
    TracksEdit clear();
    /// Moves rows, ascending and within the list, to stand together before the row `gap`, counted
    /// before the move and limited to 0..size().
    TracksEdit move(const std::vector<qsizetype>& rows, qsizetype gap);

    /// Changes whatever but the id of one track.
    template <std::invocable<Track&> Change>
    void change(qsizetype row, Change change) {
        change(playlist_.tracks[row]);
        Q_ASSERT(rowOf(playlist_.tracks.at(row).id).has_value());
    }

  private:
    void reindex(qsizetype from = 0);

    Playlist playlist_;
    IdTable rows_;
};

} // namespace quorel
