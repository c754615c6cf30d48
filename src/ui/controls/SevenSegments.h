#pragma once

#include <QPainterPath>
#include <QString>

namespace quorel {

/// The characters of a seven-segment display, as shapes: 0-9, '-', ':' and blank.
namespace sevensegments {

inline constexpr double kDigitWidth = 17;
inline constexpr double kDigitHeight = 32;

/// The segments that light up for a character: bit 0 the top one, then clockwise (1-5), 6 the
/// middle one. None for anything but digits and '-'.
unsigned segmentsOf(QChar character);

double widthOf(const QString& places);

/// The lit parts of the text, each character where `places` has room for it: "88:88" for digits and
/// a colon. Starts at 0, 0, is kDigitHeight high and leans a little to the right.
QPainterPath shapeOf(const QString& text, const QString& places);

} // namespace sevensegments

} // namespace quorel
