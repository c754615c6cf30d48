#include "desktop/MprisMetadata.h"

#include "model/FileUri.h"

#include <cmath>

namespace quorel {

QDBusObjectPath mprisTrackId(const QUuid& track) {
    if (track.isNull())
        return QDBusObjectPath(QStringLiteral("/org/mpris/MediaPlayer2/TrackList/NoTrack"));
    return QDBusObjectPath(QLatin1String("/quorel/track/") + track.toString(QUuid::Id128));
}

qlonglong mprisTime(double seconds) {
    return std::llround(seconds * 1e6);
}

QVariantMap mprisMetadata(const Track* track, double duration) {
    QVariantMap map;
    const auto add = [&map](const char* key, const QVariant& value) {
        map.insert(QLatin1String(key), value);
    };
    // The types are part of the interface: some fields are lists though there is but one text.
    const auto addList = [&add](const char* key, const std::optional<QString>& text) {
        if (text && !text->isEmpty())
            add(key, QStringList(*text));
    };
    const auto addNumber = [&add](const char* key, const std::optional<qint64>& number) {
        if (number && *number >= 0 && *number <= std::numeric_limits<int>::max())
            add(key, static_cast<int>(*number));
    };
    add("mpris:trackid", QVariant::fromValue(mprisTrackId(track ? track->id : QUuid())));
    if (!track)
        return map;
    if (duration > 0)
        add("mpris:length", mprisTime(duration));
    add("xesam:title", track->title);
    add("xesam:url", fileUri(track->path));
    if (track->album && !track->album->isEmpty())
        add("xesam:album", *track->album);
    addList("xesam:artist", track->artist);
    addList("xesam:albumArtist", track->albumArtist);
    addList("xesam:genre", track->genre);
    addNumber("xesam:trackNumber", track->trackNumber);
    addNumber("xesam:discNumber", track->discNumber);
    return map;
}

} // namespace quorel
