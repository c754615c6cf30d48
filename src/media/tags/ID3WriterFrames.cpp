// The bytes of a tag: ID3v2.3, section 3.1 (header), 3.3 (frames), 4.2 (texts) and 4.11 (comments).
#include "media/tags/ID3Writer.h"

#include <QtEndian>
#include <cstdint>

namespace quorel {

namespace {

const QByteArray kUtf16("\x01", 1); // what text follows
const QByteArray kMark("\xFF\xFE", 2);
const QByteArray kNoDescription("\0\0", 2);

QByteArray bigEndian(quint32 number) {
    QByteArray bytes(4, '\0');
    qToBigEndian(number, bytes.data());
    return bytes;
}

// Seven bits a byte, the most significant first. What is beyond 28 bits is lost.
quint32 syncsafe(quint64 number) {
    quint32 bytes = 0;
    for (int digit = 3; digit >= 0; --digit) {
        bytes = bytes << 8 | static_cast<quint32>(number >> 7 * digit & 0x7F);
    }
    return bytes;
}

QByteArray utf16(const QString& text) {
    QByteArray bytes(2 * text.size(), '\0');
    qToLittleEndian<char16_t>(text.utf16(), text.size(), bytes.data());
    return kMark + bytes;
}

QByteArray frame(const char* id, const QByteArray& content) {
    if (static_cast<quint64>(content.size()) > UINT32_MAX) {
        qFatal("a text is too long for a tag"); // nobody can type that: a mistake of ours
    }
    const QByteArray noFlags(2, '\0');
    return id + bigEndian(static_cast<quint32>(content.size())) + noFlags + content;
}

QByteArray textFrame(const char* id, const QString& text) {
    return text.isEmpty() ? QByteArray() : frame(id, kUtf16 + utf16(text));
}

QByteArray commentFrame(const QString& text) {
    return text.isEmpty() ? QByteArray()
                          : frame("COMM", kUtf16 + "eng" + kMark + kNoDescription + utf16(text));
}

QByteArray numberFrame(const char* id, std::optional<qint64> number, std::optional<qint64> total) {
    if (!number) {
        return {};
    }
    const QString ofTotal = total ? u'/' + QString::number(*total) : QString();
    return textFrame(id, QString::number(*number) + ofTotal);
}

} // namespace

QByteArray ID3Writer::tagBytes(const Tags& tags) {
    const QByteArray frames = textFrame("TIT2", tags.title) + textFrame("TPE1", tags.artist) +
                              textFrame("TALB", tags.album) + textFrame("TPE2", tags.albumArtist) +
                              textFrame("TCON", tags.genre) + textFrame("TYER", tags.year) +
                              textFrame("TCOM", tags.composer) + commentFrame(tags.comment) +
                              numberFrame("TRCK", tags.trackNumber, tags.trackTotal) +
                              numberFrame("TPOS", tags.discNumber, tags.discTotal);
    const QByteArray versionAndFlags("\x03\0\0", 3);
    return "ID3" + versionAndFlags + bigEndian(syncsafe(static_cast<quint64>(frames.size()))) +
           frames;
}

} // namespace quorel
