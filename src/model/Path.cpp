#include "model/Path.h"

namespace quorel {

namespace {

// U+10FE80..U+10FEFF as UTF-16 is this high surrogate and the low surrogate 0xDE00 + byte; as
// UTF-8 it begins with one of two prefixes.
constexpr char16_t kEscapeHigh = 0xDBFF;
constexpr char16_t kEscapeLow = 0xDE00;
constexpr QByteArrayView kEscapePrefixes[] = {"\xF4\x8F\xBA", "\xF4\x8F\xBB"};

bool isWellFormed(QByteArrayView bytes) {
    return QUtf8StringView(bytes.data(), bytes.size()).isValidUtf8();
}

qsizetype sequenceLength(char lead) {
    const auto byte = static_cast<unsigned char>(lead);
    return byte < 0x80 ? 1 : byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
}

/// The escaped byte at `index` of the text, or 0 where there is none.
char16_t escapedByte(QStringView text, qsizetype index) {
    if (text[index] != kEscapeHigh || index + 1 == text.size())
        return u'\0';
    const char16_t low = text[index + 1].unicode();
    const bool escaped = low >= kEscapeLow + 0x80 && low <= kEscapeLow + 0xFF;
    return escaped ? static_cast<char16_t>(low - kEscapeLow) : u'\0';
}

} // namespace

QString pathFromBytes(QByteArrayView bytes) {
    // A file name may hold the escape characters themselves; their bytes are escaped one by one.
    const auto holdsEscape = [](QByteArrayView view) {
        return view.contains(kEscapePrefixes[0]) || view.contains(kEscapePrefixes[1]);
    };
    if (isWellFormed(bytes) && !holdsEscape(bytes))
        return QString::fromUtf8(bytes);
    QString text;
    for (qsizetype at = 0; at < bytes.size();) {
        const qsizetype length = sequenceLength(bytes[at]);
        const QByteArrayView sequence = bytes.sliced(at, qMin(length, bytes.size() - at));
        if (isWellFormed(sequence) && !holdsEscape(sequence)) {
            text += QString::fromUtf8(sequence);
            at += length;
        } else {
            text += QChar(kEscapeHigh);
            text += QChar(kEscapeLow + static_cast<unsigned char>(bytes[at]));
            ++at;
        }
    }
    return text;
}

QByteArray pathToBytes(const QString& path) {
    QByteArray bytes;
    qsizetype plain = 0;
    for (qsizetype at = path.indexOf(QChar(kEscapeHigh)); at >= 0;
         at = path.indexOf(QChar(kEscapeHigh), at + 1)) {
        if (const char16_t byte = escapedByte(path, at)) {
            bytes += QStringView(path).sliced(plain, at - plain).toUtf8();
            bytes += static_cast<char>(byte);
            plain = at + 2;
        }
    }
    return bytes + QStringView(path).sliced(plain).toUtf8();
}

QString pathForDisplay(const QString& path) {
    QString text = path;
    for (qsizetype at = text.indexOf(QChar(kEscapeHigh)); at >= 0;
         at = text.indexOf(QChar(kEscapeHigh), at + 1)) {
        if (const char16_t byte = escapedByte(text, at))
            text.replace(at, 2, byte >= 0xA0 ? QChar(byte) : QChar(QChar::ReplacementCharacter));
    }
    return text;
}

QStringView lastComponent(QStringView path) {
    while (path.endsWith(u'/'))
        path.chop(1);
    return path.sliced(path.lastIndexOf(u'/') + 1);
}

QStringView baseName(QStringView path) {
    const QStringView name = lastComponent(path);
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot > 0 ? name.first(dot) : name;
}

QStringView extension(QStringView path) {
    const QStringView name = lastComponent(path);
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot > 0 ? name.sliced(dot + 1) : QStringView();
}

QStringView trimmedOfBlanks(QStringView text) {
    const auto isBlank = [](QChar c) { return c == u' ' || c == u'\t'; };
    while (!text.isEmpty() && isBlank(text.front()))
        text = text.sliced(1);
    while (!text.isEmpty() && isBlank(text.back()))
        text.chop(1);
    return text;
}

} // namespace quorel
