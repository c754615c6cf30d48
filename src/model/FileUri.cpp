#include "model/FileUri.h"

#include "model/Path.h"

namespace quorel {

namespace {

bool isHexDigit(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

/// Whether two hexadecimal digits follow each percent sign.
bool isWellEncoded(const QByteArray& text) {
    for (qsizetype at = text.indexOf('%'); at >= 0; at = text.indexOf('%', at + 1)) {
        if (at + 2 >= text.size() || !isHexDigit(text[at + 1]) || !isHexDigit(text[at + 2]))
            return false;
    }
    return true;
}

/// The path in the next line that names one; `at` moves behind that line, or to the end.
std::optional<QString> nextPath(const QByteArray& list, qsizetype& at) {
    while (at < list.size()) {
        const qsizetype found = list.indexOf('\n', at);
        const qsizetype end = found < 0 ? list.size() : found;
        const QByteArray line = list.sliced(at, end - at).trimmed();
        at = end + 1;
        if (auto path = pathOfFileUri(QString::fromUtf8(line)))
            return path;
    }
    return std::nullopt;
}

} // namespace

QString fileUri(const QString& path) {
    // What RFC 3986 (section 3.3) lets stand in a path, besides letters, digits and "-._~".
    return QLatin1String("file://") +
           QLatin1String(pathToBytes(path).toPercentEncoding("/!$&'()*+,;=:@"));
}

std::optional<QString> pathOfFileUri(const QString& uri) {
    QByteArray rest = uri.toUtf8();
    if (!rest.first(qMin(rest.size(), qsizetype(5))).toLower().startsWith("file:"))
        return std::nullopt;
    rest.remove(0, 5);
    if (rest.startsWith("//")) {
        const qsizetype path = rest.indexOf('/', 2);
        const QByteArray host = path < 0 ? rest.sliced(2) : rest.sliced(2, path - 2);
        if (path < 0 || (!host.isEmpty() && host.toLower() != "localhost"))
            return std::nullopt;
        rest.remove(0, path);
    }
    if (!rest.startsWith('/') || !isWellEncoded(rest))
        return std::nullopt;
    const QByteArray bytes = QByteArray::fromPercentEncoding(rest);
    if (bytes.contains('\0'))
        return std::nullopt;
    return pathFromBytes(bytes);
}

QStringList pathsOfUriList(const QByteArray& list) {
    QStringList paths;
    qsizetype at = 0;
    while (const auto path = nextPath(list, at))
        paths += *path;
    return paths;
}

bool namesFiles(const QByteArray& list) {
    qsizetype at = 0;
    return nextPath(list, at).has_value();
}

} // namespace quorel
