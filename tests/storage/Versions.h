#pragma once

#include "model/PersistedState.h"

namespace quorel::test {

/// A state that can be told from those of other versions by every one of its tracks.
inline PersistedState stateOfVersion(int version, int trackCount) {
    PersistedState state;
    state.playlists = {Playlist{QUuid(), QString::number(version), {}}};
    state.resumePosition = version;
    state.settings.volume = 1.0 / (version + 1);
    Track track;
    track.title = QStringLiteral("Title of version %1").arg(version);
    for (int i = 0; i < trackCount; ++i) {
        track.trackNumber = i;
        state.playlists.first().tracks += track;
    }
    return state;
}

/// The version that a state says it is; -1 where it is none of them.
inline int versionOf(const std::optional<PersistedState>& state) {
    const int version = state ? static_cast<int>(state->resumePosition.value_or(-1)) : -1;
    const bool isWhole =
        state && *state == stateOfVersion(version, int(state->playlists.first().tracks.size()));
    return isWhole ? version : -1;
}

} // namespace quorel::test
