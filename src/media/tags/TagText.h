#pragma once

#include <QString>
#include <optional>

namespace quorel {

/// Cyrillic text that was stored in Windows-1251 and read as Latin-1, put right; any other text as
/// it is. Text counts as such when more than 0.4 of its characters are Cyrillic in Windows-1251.
std::optional<QString> fixMojibake(const std::optional<QString>& text);

/// "3/12": a track's or disc's number and how many there are.
struct NumberAndTotal {
    std::optional<qint64> number;
    std::optional<qint64> total;

    bool operator==(const NumberAndTotal&) const = default;
};

/// What stands before and behind the first slash, each absent where it is no decimal number. With
/// one of them empty the other is the number.
NumberAndTotal parseNumberSlash(const std::optional<QString>& text);

} // namespace quorel
