#pragma once

#include "model/PersistedState.h"

#include <cmath>

namespace quorel::bench {

/// A state of that many tracks with every field filled, spread over 20 playlists: albums of twelve
/// tracks, one in eight of them with titles and names beyond ASCII.
inline PersistedState sampleState(int trackCount) {
    constexpr int kPlaylists = 20;
    constexpr int kAlbumTracks = 12;
    PersistedState state;
    for (int p = 0; p < kPlaylists; ++p)
        state.playlists += Playlist::named(QStringLiteral("Playlist %1").arg(p + 1));
    for (int i = 0; i < trackCount; ++i) {
        const int album = i / kAlbumTracks;
        const bool foreign = album % 8 == 0;
        Track track;
        track.id = QUuid::createUuid();
        track.artist = (foreign ? QStringLiteral(u"Дмитрий Ångström %1")
                                : QStringLiteral("The Example Ensemble %1"))
                           .arg(album / 3);
        track.title = (foreign ? QStringLiteral(u"春の歌 — Première \"partie\" %1")
                               : QStringLiteral("Movement No. %1 in a Minor Key"))
                          .arg(i);
        track.album = QStringLiteral("Collected Works, Volume %1").arg(album);
        track.path = QStringLiteral("/home/listener/Music/%1/%2/%3 - %4.flac")
                         .arg(track.artist, *track.album)
                         .arg(i % kAlbumTracks + 1, 2, 10, QLatin1Char('0'))
                         .arg(track.title);
        track.duration = 120 + 60 * std::abs(std::sin(i));
        track.albumArtist = track.artist;
        track.genre = QStringLiteral("Chamber Music");
        track.year = QString::number(1960 + album % 60);
        track.trackNumber = i % kAlbumTracks + 1;
        track.trackTotal = kAlbumTracks;
        track.discNumber = 1;
        track.discTotal = 2;
        track.composer = QStringLiteral("Composer Name %1").arg(album % 500);
        track.comment = QStringLiteral("Ripped from the original disc, take %1").arg(i);
        track.bitrateKbps = 700 + i % 300;
        track.sampleRateHz = 44100;
        track.bpm = 60 + i % 120;
        track.peakLinear = 0.5 + 0.5 * std::abs(std::cos(i));
        track.rmsLinear = 0.1 + 0.1 * std::abs(std::cos(3 * i));
        track.trimStart = 0.3 * std::abs(std::sin(5 * i));
        track.trimEnd = *track.duration - *track.trimStart;
        state.playlists[int(qint64(i) * kPlaylists / trackCount)].tracks += track;
    }
    state.activePlaylistID = state.playlists.front().id;
    state.resumePlaylistID = state.playlists.front().id;
    state.resumePosition = 61.25;
    return state;
}

} // namespace quorel::bench
