#pragma once

#include <QStringList>
#include <optional>

namespace quorel {

// Paths as file URIs and back, byte by byte: QUrl would lose those that are not UTF-8.

/// The file URI of an absolute path, which is kept as model/Path.h says.
QString fileUri(const QString& path);

/// The path that a file URI of this machine names; nothing where it is none or is badly encoded.
std::optional<QString> pathOfFileUri(const QString& uri);

/// The paths that a list of URIs names (text/uri-list: one a line), in its order; lines that name
/// none are passed over. Any thread.
QStringList pathsOfUriList(const QByteArray& list);
/// Whether there are any; looks no further than to the first.
bool namesFiles(const QByteArray& list);

} // namespace quorel
