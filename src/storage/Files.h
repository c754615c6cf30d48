#pragma once

#include <QByteArray>
#include <optional>

namespace quorel {

// Files by the bytes of their paths (model/Path.h). All of these may wait for the disk; any thread.

/// Whether a regular file is there, directly or behind symbolic links.
bool isRegularFile(const QByteArray& path);

/// Whether a folder is there, directly or behind symbolic links.
bool isFolder(const QByteArray& path);

/// In bytes; 0 where it is not known.
qint64 fileSize(const QByteArray& path);

/// All bytes of a regular file; nothing where it cannot be read. A pipe or a device is not opened.
std::optional<QByteArray> readFile(const QByteArray& path);

/// Whether both lead to one and the same thing.
bool isSameFile(const QByteArray& path, const QByteArray& other);

/// The path from the root on, without needless slashes and dots. A relative one begins at `folder`,
/// which is absolute. ".." is resolved unless symbolic links make that another file.
QByteArray absolutePath(const QByteArray& path, const QByteArray& folder);

/// The absolute path of the process's working folder.
QByteArray workingFolder();

/// The folder that holds what is at an absolute path.
QByteArray folderOf(const QByteArray& path);

/// Makes the folder and those above it, for the user alone, where they are missing.
void makeFolders(const QByteArray& path);

} // namespace quorel
