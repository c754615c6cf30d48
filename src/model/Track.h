#pragma once

#include <QList>
#include <QString>
#include <QUuid>
#include <optional>

namespace quorel {

/// One entry of a playlist: a file and what is known about it. Identity is `id`, never the path:
/// one file may stand in a playlist twice.
struct Track {
    struct Name {
        QString artist; ///< may be empty
        QString title;

        bool operator==(const Name&) const = default;
    };

    QUuid id;
    QString path; ///< absolute; model/Path.h says how its bytes are kept
    QString artist;
    QString title;
    std::optional<double> duration; ///< seconds; absent until the tags are read
    std::optional<QString> album;
    std::optional<QString> albumArtist;
    std::optional<QString> genre;
    std::optional<QString> year; ///< exactly as the tag holds it
    std::optional<qint64> trackNumber;
    std::optional<qint64> trackTotal;
    std::optional<qint64> discNumber;
    std::optional<qint64> discTotal;
    std::optional<QString> composer;
    std::optional<QString> comment;
    std::optional<qint64> bitrateKbps; ///< kbit/s
    std::optional<qint64> sampleRateHz;
    std::optional<qint64> bpm;
    std::optional<double> peakLinear; ///< sample peak, 1.0 is full scale
    std::optional<double> rmsLinear;
    std::optional<double> trimStart; ///< seconds of silence at the head
    std::optional<double> trimEnd;   ///< seconds at which the silence at the tail begins

    bool operator==(const Track&) const = default;

    /// A track with a new random id, named after its file; everything else is absent.
    static Track fromPath(const QString& path);
    static QList<Track> fromPaths(const QList<QString>& paths);

    /// Artist and title as the file name gives them: "03 - Artist - Title.mp3".
    static Name parse(const QString& path);
};

/// A named list of tracks, in playing and display order.
struct Playlist {
    QUuid id;
    QString name;
    QList<Track> tracks;

    bool operator==(const Playlist&) const = default;

    /// An empty playlist with a new random id.
    static Playlist named(const QString& name);
};

/// What reading one file gave; whatever could not be read is absent. Units as in Track.
struct TrackMetadata {
    std::optional<double> duration;
    std::optional<QString> artist;
    std::optional<QString> title;
    std::optional<QString> album;
    std::optional<QString> albumArtist;
    std::optional<QString> genre;
    std::optional<QString> year;
    std::optional<qint64> trackNumber;
    std::optional<qint64> trackTotal;
    std::optional<qint64> discNumber;
    std::optional<qint64> discTotal;
    std::optional<QString> composer;
    std::optional<QString> comment;
    std::optional<qint64> bitrateKbps;
    std::optional<qint64> sampleRateHz;

    bool operator==(const TrackMetadata&) const = default;
};

} // namespace quorel

// Lists may move these by copying their bytes, as they may each of the fields.
Q_DECLARE_TYPEINFO(quorel::Track, Q_RELOCATABLE_TYPE);
Q_DECLARE_TYPEINFO(quorel::Playlist, Q_RELOCATABLE_TYPE);
