#include "media/M3U8.h"

#include "media/AudioFiles.h"
#include "model/Path.h"
#include "storage/FileReplacement.h"
#include "storage/Files.h"

#include <algorithm>
#include <cctype>
#include <cmath>

namespace quorel {

namespace {

constexpr QLatin1StringView kUrlStart("file://");

bool isLineBreak(QChar c) {
    const char16_t code = c.unicode();
    return (code >= u'\n' && code <= u'\r') || code == u'\u0085' || code == u'\u2028' ||
           code == u'\u2029';
}

QString onOneLine(QString text) {
    std::replace_if(text.begin(), text.end(), isLineBreak, QChar(u' '));
    return text;
}

/// Whole seconds, or -1 where nothing is known.
qint64 wholeSeconds(std::optional<double> duration) {
    constexpr double kMost = 1e15; // whole numbers up to here are exact
    return duration && std::abs(*duration) < kMost ? static_cast<qint64>(*duration) : -1;
}

/// A path as a line holds it.
QByteArray written(const QString& path) {
    if (std::ranges::none_of(path, isLineBreak))
        return path.toUtf8();
    return kUrlStart.latin1() + pathToBytes(path).toPercentEncoding("/");
}

/// The path of a file:// URL; empty where it has none or is badly encoded.
QString pathOfUrl(QStringView url) {
    QByteArray path = url.sliced(kUrlStart.size()).toUtf8(); // begins with a host's name, or none
    path.truncate(std::ranges::find_if(path, [](char c) { return c == '?' || c == '#'; }) -
                  path.cbegin());
    const auto isHex = [&path](qsizetype at) {
        return at < path.size() && std::isxdigit(static_cast<unsigned char>(path[at])) != 0;
    };
    for (qsizetype at = path.indexOf('%'); at >= 0; at = path.indexOf('%', at + 1)) {
        if (!isHex(at + 1) || !isHex(at + 2))
            return {};
    }
    const qsizetype begin = path.indexOf('/');
    return begin < 0 ? QString() : pathFromBytes(QByteArray::fromPercentEncoding(path.mid(begin)));
}

/// The path that a line names; empty for a line without one.
QString pathOfLine(QStringView line) {
    line = trimmedOfBlanks(line);
    if (line.isEmpty() || line.startsWith(u'#'))
        return {};
    const bool isUrl = line.startsWith(kUrlStart, Qt::CaseInsensitive);
    const QString path = isUrl ? pathOfUrl(line) : line.toString();
    return path.contains(QChar::Null) ? QString() : path;
}

} // namespace

QByteArray M3U8::text(const Playlist& playlist) {
    QByteArray text = "#EXTM3U\n";
    for (const Track& track : playlist.tracks) {
        const QString label = track.artist.isEmpty()
                                  ? track.title
                                  : track.artist + QStringLiteral(" - ") + track.title;
        text += "#EXTINF:" + QByteArray::number(wholeSeconds(track.duration)) + ',' +
                onOneLine(label).toUtf8() + '\n' + written(track.path) + '\n';
    }
    return text;
}

std::optional<QStringList> M3U8::entries(QByteArrayView text) {
    if (!QUtf8StringView(text.data(), text.size()).isValidUtf8())
        return std::nullopt;
    constexpr QByteArrayView kByteOrderMark = "\xEF\xBB\xBF";
    if (text.startsWith(kByteOrderMark))
        text = text.sliced(kByteOrderMark.size());
    const QString lines = QString::fromUtf8(text);
    QStringList entries;
    for (auto begin = lines.begin(); begin != lines.end();) {
        const auto end = std::find_if(begin, lines.end(), isLineBreak);
        const QString path = pathOfLine(QStringView(begin, end));
        if (!path.isEmpty())
            entries += path;
        begin = end == lines.end() ? end : end + 1;
    }
    return entries;
}

bool M3U8::exportPlaylist(const Playlist& playlist, const QString& file) {
    FileReplacement replacement(absolutePath(pathToBytes(file), workingFolder()),
                                FileReplacement::Access::AsUsual);
    return replacement.write(text(playlist)) && replacement.commit();
}

std::optional<M3U8::Import> M3U8::importPlaylist(const QString& file) {
    const QByteArray path = absolutePath(pathToBytes(file), workingFolder());
    const std::optional<QByteArray> text = readFile(path);
    const auto named = text ? entries(*text) : std::nullopt;
    if (!named)
        return std::nullopt;
    Import import{pathForDisplay(baseName(file).toString()), {}};
    for (const QString& entry : *named) {
        QByteArray found = pathToBytes(entry);
        if (!found.startsWith('/'))
            found = absolutePath(found, folderOf(path));
        if (hasAudioExtension(entry) && isRegularFile(found))
            import.paths += pathFromBytes(found);
    }
    return import;
}

} // namespace quorel
