#pragma once

#include "player/IdSet.h"
#include "player/TrackList.h"
#include "player/TrackSearch.h"

namespace quorel {

/// The selected tracks of the shown playlist.
class Selection {
  public:
    const IdSet& ids() const { return ids_; }

    /// A click on a row of the shown playlist: alone it selects the track, with `toggle` (the
    /// Ctrl key) it adds or removes it, with `extend` (Shift) it selects all from the track clicked
    /// before to this one, whether they are visible or not. An unknown track changes nothing.
    void click(const TrackList& shown, const QUuid& track, bool extend, bool toggle);

    void selectAll(const TrackList& shown, const VisibleRows& visible);

    /// The track clicked last remains the anchor of the next range.
    void clear() { ids_.clear(); }

    /// Forgets what is no longer in the shown playlist; returns whether there was something.
    bool keepOnly(const TrackList& shown);

  private:
    IdSet ids_;
    std::optional<QUuid> lastClicked_;
};

} // namespace quorel
