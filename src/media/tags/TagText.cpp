#include "media/tags/TagText.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace quorel {

namespace {

// Windows-1251 from 0x80 to 0xBF, as Unicode maps it; from 0xC0 on it follows the alphabet from
// U+0410. 0x98 is not assigned.
constexpr std::array<char16_t, 64> kWindows1251{
    0x0402, 0x0403, 0x201A, 0x0453, 0x201E, 0x2026, 0x2020, 0x2021, 0x20AC, 0x2030, 0x0409,
    0x2039, 0x040A, 0x040C, 0x040B, 0x040F, 0x0452, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x0000, 0x2122, 0x0459, 0x203A, 0x045A, 0x045C, 0x045B, 0x045F, 0x00A0,
    0x040E, 0x045E, 0x0408, 0x00A4, 0x0490, 0x00A6, 0x00A7, 0x0401, 0x00A9, 0x0404, 0x00AB,
    0x00AC, 0x00AD, 0x00AE, 0x0407, 0x00B0, 0x00B1, 0x0406, 0x0456, 0x0491, 0x00B5, 0x00B6,
    0x00B7, 0x0451, 0x2116, 0x0454, 0x00BB, 0x0458, 0x0405, 0x0455, 0x0457};

constexpr char16_t kUnassigned = 0;

char16_t fromWindows1251(char16_t byte) {
    return byte < 0x80   ? byte
           : byte < 0xC0 ? kWindows1251[byte - 0x80U]
                         : static_cast<char16_t>(0x0410 + (byte - 0xC0));
}

// The text whose Latin-1 bytes these characters are; empty where it has other characters, or bytes
// that Windows-1251 does not know.
QString readAsWindows1251(const QString& latin1) {
    QString decoded(latin1.size(), Qt::Uninitialized);
    for (qsizetype i = 0; i < latin1.size(); ++i) {
        const char16_t byte = latin1[i].unicode();
        const char16_t letter = byte <= 0xFF ? fromWindows1251(byte) : kUnassigned;
        if (letter == kUnassigned && byte != 0) {
            return {};
        }
        decoded[i] = QChar(letter);
    }
    return decoded;
}

bool isMostlyCyrillic(const QString& text) {
    constexpr double kEnough = 0.4;
    const auto letters = std::count_if(
        text.begin(), text.end(), [](QChar c) { return c >= QChar(0x0400) && c <= QChar(0x04FF); });
    const auto characters = text.size() - text.count(QLatin1String("\r\n")); // which are one
    return static_cast<double>(letters) / static_cast<double>(characters) > kEnough;
}

std::optional<qint64> wholeNumber(QStringView text) {
    const auto isBlank = [](QChar c) { return c == u' ' || c == u'\t'; };
    while (!text.isEmpty() && isBlank(text.front())) {
        text = text.sliced(1);
    }
    while (!text.isEmpty() && isBlank(text.back())) {
        text.chop(1);
    }
    if (text.size() > 1 && text[0] == u'+' && text[1].isDigit()) {
        text = text.sliced(1);
    }
    const QByteArray digits = text.toUtf8();
    qint64 number = 0;
    const auto [stopped, error] = std::from_chars(digits.begin(), digits.end(), number);
    return error == std::errc() && stopped == digits.end() ? std::optional(number) : std::nullopt;
}

} // namespace

std::optional<QString> fixMojibake(const std::optional<QString>& text) {
    if (!text) {
        return text;
    }
    const QString decoded = readAsWindows1251(*text);
    return !decoded.isEmpty() && isMostlyCyrillic(decoded) ? decoded : text;
}

NumberAndTotal parseNumberSlash(const std::optional<QString>& text) {
    if (!text) {
        return {};
    }
    const QStringView whole(*text);
    const qsizetype slash = whole.indexOf(u'/');
    const QStringView first = slash < 0 ? whole : whole.first(slash);
    const QStringView second = slash < 0 ? QStringView() : whole.sliced(slash + 1);
    if (first.isEmpty()) {
        return {wholeNumber(second), std::nullopt};
    }
    return {wholeNumber(first), wholeNumber(second)};
}

} // namespace quorel
