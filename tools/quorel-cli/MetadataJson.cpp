#include "tools/quorel-cli/MetadataJson.h"

namespace quorel::cli {

QJsonObject toJson(const TrackMetadata& metadata) {
    QJsonObject object;
    const auto put = [&object](QLatin1String name, const auto& value) {
        if (value) {
            object.insert(name, *value);
        }
    };
    put(QLatin1String("duration"), metadata.duration);
    put(QLatin1String("artist"), metadata.artist);
    put(QLatin1String("title"), metadata.title);
    put(QLatin1String("album"), metadata.album);
    put(QLatin1String("albumArtist"), metadata.albumArtist);
    put(QLatin1String("genre"), metadata.genre);
    put(QLatin1String("year"), metadata.year);
    put(QLatin1String("trackNumber"), metadata.trackNumber);
    put(QLatin1String("trackTotal"), metadata.trackTotal);
    put(QLatin1String("discNumber"), metadata.discNumber);
    put(QLatin1String("discTotal"), metadata.discTotal);
    put(QLatin1String("composer"), metadata.composer);
    put(QLatin1String("comment"), metadata.comment);
    put(QLatin1String("bitrateKbps"), metadata.bitrateKbps);
    put(QLatin1String("sampleRateHz"), metadata.sampleRateHz);
    return object;
}

} // namespace quorel::cli
