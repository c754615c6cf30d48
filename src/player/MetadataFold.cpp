#include "player/MetadataFold.h"

#include <cmath>

namespace quorel {

bool needsMetadata(const Track& track) {
    return !track.duration || !track.bitrateKbps || !track.sampleRateHz;
}

Track withMetadata(Track track, const TrackMetadata& read) {
    const auto takeName = [](QString& known, const std::optional<QString>& name) {
        if (name && !name->isEmpty())
            known = *name;
    };
    const auto take = [](auto& known, const auto& value) {
        if (value)
            known = value;
    };
    const auto takeTag = [&](auto& known, const auto& value) {
        if (value || read.duration)
            known = value;
    };
    takeName(track.title, read.title);
    takeName(track.artist, read.artist);
    take(track.duration, read.duration);
    take(track.bitrateKbps, read.bitrateKbps);
    take(track.sampleRateHz, read.sampleRateHz);
    takeTag(track.album, read.album);
    takeTag(track.albumArtist, read.albumArtist);
    takeTag(track.genre, read.genre);
    takeTag(track.year, read.year);
    takeTag(track.trackNumber, read.trackNumber);
    takeTag(track.trackTotal, read.trackTotal);
    takeTag(track.discNumber, read.discNumber);
    takeTag(track.discTotal, read.discTotal);
    takeTag(track.composer, read.composer);
    takeTag(track.comment, read.comment);
    return track;
}

TrackMetadata withEstimatedBitrate(TrackMetadata read, const std::function<qint64()>& fileSize) {
    constexpr double kShortest = 1.0; // seconds; tags would make up most of a shorter file
    if (read.bitrateKbps || !read.duration || *read.duration <= kShortest)
        return read;
    if (const qint64 bytes = fileSize(); bytes >= 1)
        read.bitrateKbps = std::llround(static_cast<double>(bytes) * 8 / *read.duration / 1000);
    return read;
}

} // namespace quorel
