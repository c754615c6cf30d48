#pragma once

#include "core/Error.h"

#include <QByteArray>
#include <QString>
#include <optional>

namespace quorel {

/// Writes tags into MP3 files.
struct ID3Writer {
    /// What a user can edit. An empty text and an absent number are not written; a total is written
    /// with its number only.
    struct Tags {
        QString title;
        QString artist;
        QString album;
        QString albumArtist;
        QString genre;
        QString year;
        std::optional<qint64> trackNumber;
        std::optional<qint64> trackTotal;
        std::optional<qint64> discNumber;
        std::optional<qint64> discTotal;
        QString composer;
        QString comment;
    };

    /// Replaces the ID3v2 tag at the start of a file by a fresh one; all behind it stays as it is.
    /// Where the old tag claims more than the file holds nothing but the new one is left, and the
    /// file as it was is kept beside it, with ".orig" (then ".orig.2" and so on) behind its name.
    ///
    /// The file is replaced whole, keeping its permissions and, where that is allowed, its owner;
    /// a symbolic link goes on leading to it. Nothing where that succeeded. On failure the file is
    /// as it was: error 10 where the name does not end in ".mp3" (in any case), else the system's
    /// (domain "POSIX", the code is errno). Waits for the disk; any thread, one at a time for one
    /// file. `path` as in model/Path.h.
    static std::optional<Error> writeTags(const QString& path, const Tags& tags);

    /// How many frames of the file's old tag writeTags would leave out: pictures, lyrics, gains,
    /// and of comments and the like all but the one that is shown. 0 where it would refuse. Waits
    /// for the disk; any thread.
    static int64_t framesDropped(const QString& path);

    /// The tag that writeTags puts in front: ID3v2.3 without padding, texts in UTF-16.
    static QByteArray tagBytes(const Tags& tags);
};

} // namespace quorel
