#pragma once

#include <QByteArray>
#include <QString>

namespace quorel {

// A path is kept, compared and stored as a QString in which every sequence of bytes can be told
// apart, though a Linux file name is any bytes and Qt's own conversion loses those that are not
// UTF-8. A byte b (0x80..0xFF) outside well-formed UTF-8 becomes the private-use character
// U+10FE00 + b. A path stays valid Unicode that way and passes unharmed through JSON, playlists
// and the clipboard. Files are therefore opened by pathToBytes(), never by QFile::encodeName().

/// The text of the path that the file system knows by these bytes. Any bytes; any thread.
QString pathFromBytes(QByteArrayView bytes);

/// The file-system bytes of a path's text: pathToBytes(pathFromBytes(b)) == b for every b.
QByteArray pathToBytes(const QString& path);

/// The path for people to read: bytes that are not UTF-8 shown as Latin-1, the likeliest encoding
/// of an old file name, and unprintable ones as U+FFFD. Not for opening files.
QString pathForDisplay(const QString& path);

/// What follows the last slash, slashes at the end not counted.
QStringView lastComponent(QStringView path);

/// The last component without its extension. A dot that begins a name begins no extension.
QStringView baseName(QStringView path);

/// The extension of the last component, without its dot; empty where there is none.
QStringView extension(QStringView path);

/// Without spaces and tabs at both ends; other white space belongs to the text.
QStringView trimmedOfBlanks(QStringView text);

} // namespace quorel
