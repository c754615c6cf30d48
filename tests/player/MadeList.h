#pragma once

#include "player/TrackList.h"

#include <QUuid>
#include <string_view>

namespace quorel::test {

/// The id by which tracks of one letter are known in the tests.
inline QUuid idOf(char letter) {
    return {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, static_cast<uchar>(letter)};
}

inline QList<Track> tracksOf(std::string_view letters) {
    QList<Track> tracks;
    for (const char letter : letters) {
        Track track;
        track.id = idOf(letter);
        track.title = QChar::fromLatin1(letter);
        tracks += track;
    }
    return tracks;
}

/// A list of tracks that bear these letters as titles.
inline TrackList listOf(std::string_view letters) {
    Playlist playlist = Playlist::named(QStringLiteral("Letters"));
    playlist.tracks = tracksOf(letters);
    return TrackList(std::move(playlist));
}

inline std::string lettersOf(const QList<Track>& tracks) {
    std::string letters;
    for (const Track& track : tracks)
        letters += track.title.toStdString();
    return letters;
}

inline std::string lettersOf(const TrackList& list) {
    return lettersOf(list.tracks());
}

inline char letterOf(const std::optional<QUuid>& id) {
    return id ? static_cast<char>(id->data4[7]) : '-';
}

inline std::string lettersOf(const std::vector<QUuid>& ids) {
    std::string letters;
    for (const QUuid& id : ids)
        letters += letterOf(id);
    return letters;
}

} // namespace quorel::test
