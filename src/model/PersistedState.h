#pragma once

#include "model/AppSettings.h"
#include "model/Track.h"

namespace quorel {

/// All that is remembered between launches.
struct PersistedState {
    QList<Playlist> playlists; ///< in the order of the tabs
    std::optional<QUuid> activePlaylistID;
    AppSettings settings;
    std::optional<QUuid> resumePlaylistID;
    std::optional<QUuid> resumeTrackID;
    std::optional<double> resumePosition; ///< seconds into that track

    bool operator==(const PersistedState&) const = default;
};

} // namespace quorel
