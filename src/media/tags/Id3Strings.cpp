#include "media/tags/Id3Strings.h"

#include <QStringDecoder>

namespace quorel {

namespace {

QByteArrayView view(std::span<const std::byte> bytes) {
    return {bytes.data(), static_cast<qsizetype>(bytes.size())};
}

// Bytes before the zero that ends a text.
std::size_t lengthOf(std::span<const std::byte> bytes, std::size_t width) {
    std::size_t at = 0;
    for (; at + width <= bytes.size(); at += width) {
        if (bytes[at] == std::byte{} && bytes[at + width - 1] == std::byte{}) {
            return at;
        }
    }
    return bytes.size();
}

// In a text the upper halves of the characters mostly are zero, or repeat, and the lower ones vary.
bool looksBigEndian(std::span<const std::byte> text) {
    int first = 0;
    int second = 0;
    for (std::size_t i = 0; i + 1 < text.size(); i += 2) {
        const auto repeats = [&](std::size_t at) {
            return text[at] == std::byte{} || (at >= 2 && text[at] == text[at - 2]);
        };
        first += repeats(i) ? 1 : 0;
        second += repeats(i + 1) ? 1 : 0;
    }
    return first > second;
}

bool isMark(std::span<const std::byte> text, unsigned first, unsigned second) {
    return text.size() >= 2 && text[0] == std::byte(first) && text[1] == std::byte(second);
}

} // namespace

QString Id3Strings::next() {
    const bool wide = encoding_ == Id3Encoding::Utf16 || encoding_ == Id3Encoding::Utf16BigEndian;
    const std::size_t width = wide ? 2 : 1;
    const auto text = bytes_.first(lengthOf(bytes_, width));
    bytes_ = bytes_.subspan(std::min(bytes_.size(), text.size() + width));
    switch (encoding_) {
    case Id3Encoding::Latin1:
        return QString::fromLatin1(view(text));
    case Id3Encoding::Utf8: {
        const QString decoded = QString::fromUtf8(view(text));
        return decoded.startsWith(QChar::ByteOrderMark) ? decoded.sliced(1) : decoded;
    }
    default:
        return decodeUtf16(text);
    }
}

QStringList Id3Strings::rest() {
    QStringList texts;
    while (!atEnd()) {
        texts.append(next());
    }
    while (texts.size() > 1 && texts.back().isEmpty()) {
        texts.removeLast();
    }
    return texts;
}

QString Id3Strings::decodeUtf16(std::span<const std::byte> text) {
    for (; isMark(text, 0xFE, 0xFF) || isMark(text, 0xFF, 0xFE); text = text.subspan(2)) {
        order_ = isMark(text, 0xFE, 0xFF) ? Order::Big : Order::Little;
    }
    bool big = order_ == Order::Big;
    if (order_ == Order::Unknown) {
        big = encoding_ == Id3Encoding::Utf16BigEndian || looksBigEndian(text);
    }
    const auto whole = text.first(text.size() / 2 * 2); // half a character may be left of a cut one
    QStringDecoder decoder(big ? QStringDecoder::Utf16BE : QStringDecoder::Utf16LE,
                           QStringDecoder::Flag::Stateless);
    return decoder(view(whole));
}

} // namespace quorel
