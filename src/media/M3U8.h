#pragma once

#include "model/Track.h"

#include <QStringList>
#include <optional>

namespace quorel {

/// Extended M3U playlists in UTF-8.
struct M3U8 {
    struct Import {
        QString name;
        QStringList paths;

        bool operator==(const Import&) const = default;
    };

    /// The playlist as such a file holds it: line feeds, no byte-order mark. A path that holds a
    /// line break, which only a file:// URL can carry through such a file, is written as one.
    static QByteArray text(const Playlist& playlist);

    /// The paths that a text names, in its order; nothing where it is not UTF-8. A path that does
    /// not begin with a slash stands below the playlist's folder. Any bytes.
    static std::optional<QStringList> entries(QByteArrayView text);

    /// Writes the playlist's text to that file, which it replaces as a whole; false, and any older
    /// file intact, where that fails.
    static bool exportPlaylist(const Playlist& playlist, const QString& file);

    /// The file's name without extension and those of its paths that lead to audio files; nothing
    /// where it cannot be read or is not UTF-8.
    static std::optional<Import> importPlaylist(const QString& file);
};

} // namespace quorel
