#include "model/Track.h"

#include "model/Path.h"

#include <QRandomGenerator>
#include <array>
#include <bit>

namespace quorel {

namespace {

/// The name without a leading track number, that is without what ^\s*\d+[\s.\-_]+ matches; the
/// whole name where nothing else would be left. Digits and spaces are those of any script.
QStringView withoutTrackNumber(QStringView name) {
    const auto skip = [name](qsizetype from, auto matches) {
        while (from < name.size() && matches(name[from]))
            ++from;
        return from;
    };
    const qsizetype digits = skip(0, [](QChar c) { return c.isSpace(); });
    const qsizetype separators = skip(digits, [](QChar c) { return c.isDigit(); });
    const qsizetype rest = skip(
        separators, [](QChar c) { return c.isSpace() || c == u'.' || c == u'-' || c == u'_'; });
    const bool numbered = separators > digits && rest > separators && rest < name.size();
    return numbered ? name.sliced(rest) : name;
}

/// A random id (RFC 4122, version 4). QUuid::createUuid() asks the system for each, which takes
/// half of the time of adding files.
QUuid newId() {
    std::array<quint32, 4> random{};
    QRandomGenerator::global()->fillRange(random.data(), qsizetype(random.size()));
    auto id = std::bit_cast<QUuid>(random);
    id.data3 = ushort((id.data3 & 0x0FFF) | 0x4000);
    id.data4[0] = uchar((id.data4[0] & 0x3F) | 0x80);
    return id;
}

} // namespace

Track Track::fromPath(const QString& path) {
    Track track;
    track.id = newId();
    track.path = path;
    Name name = parse(path);
    track.artist = std::move(name.artist);
    track.title = std::move(name.title);
    return track;
}

QList<Track> Track::fromPaths(const QList<QString>& paths) {
    QList<Track> tracks;
    tracks.reserve(paths.size());
    for (const QString& path : paths)
        tracks += fromPath(path);
    return tracks;
}

Track::Name Track::parse(const QString& path) {
    constexpr QStringView kSeparator = u" - ";
    const QString readable = pathForDisplay(path);
    const QStringView name = withoutTrackNumber(baseName(readable));
    if (const qsizetype at = name.indexOf(kSeparator); at >= 0) {
        const QStringView artist = trimmedOfBlanks(name.first(at));
        const QStringView title = trimmedOfBlanks(name.sliced(at + kSeparator.size()));
        if (!artist.isEmpty() && !title.isEmpty())
            return {artist.toString(), title.toString()};
    }
    return {QString(), trimmedOfBlanks(name).toString()};
}

Playlist Playlist::named(const QString& name) {
    return {newId(), name, {}};
}

} // namespace quorel
