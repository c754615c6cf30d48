#pragma once

#include "player/TrackList.h"

namespace quorel {

/// What was removed from playlists, for undoing it, newest first. It lives as long as the program
/// and has no bound.
class RemovalHistory {
  public:
    struct Removal {
        QUuid playlist;
        RemovedTracks removed;
    };

    bool isEmpty() const { return removals_.empty(); }

    /// Removes the rows, ascending and within the list, and remembers them.
    TracksEdit remove(TrackList& list, const std::vector<qsizetype>& rows) {
        RemovedTracks removed;
        TracksEdit edit = list.remove(rows, removed);
        if (edit)
            removals_.push_back({list.id(), std::move(removed)});
        return edit;
    }

    /// The newest removal, which is forgotten here: for TrackList::restore() of its playlist, or to
    /// be dropped where that is no more.
    std::optional<Removal> takeNewest() {
        if (isEmpty())
            return std::nullopt;
        Removal newest = std::move(removals_.back());
        removals_.pop_back();
        return newest;
    }

  private:
    std::vector<Removal> removals_;
};

} // namespace quorel
