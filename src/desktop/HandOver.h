#pragma once

#include <QByteArray>
#include <QStringList>
#include <optional>

namespace quorel {

/// What a further launch of the program hands to the one that runs.
struct HandOver {
    QStringList paths;          ///< absolute; model/Path.h says how their bytes are kept
    QByteArray activationToken; ///< by which the desktop lets a window come to the front; or empty

    bool operator==(const HandOver&) const = default;
};

// As a message it is the size of the rest in four bytes, the highest first, then the token and the
// paths, each with a zero byte at its end.

inline constexpr qsizetype kHandOverHeader = 4;
/// Bytes of the longest rest: more than a command line can hold, its paths made absolute.
inline constexpr qsizetype kLongestHandOver = 16 << 20;

QByteArray messageOf(const HandOver& handOver);

/// The size of the rest, by the header; nothing where no message may be of that size.
std::optional<qsizetype> sizeAfter(QByteArrayView header);

/// What the rest says; nothing where it says anything but a token and absolute paths.
std::optional<HandOver> handOverOf(QByteArrayView rest);

} // namespace quorel
