#pragma once

#include <QColor>
#include <QFont>

// NOLINTNEXTLINE(readability-identifier-naming): read as the table of one type's values.
namespace quorel::Theme {

// The colours of every view, sRGB. The interface is always dark.

namespace detail {
constexpr QColor colour(double red, double green, double blue, double alpha = 1) {
    const auto part = [](double value) { return qRound(value * 255); };
    return QColor(part(red), part(green), part(blue), part(alpha));
}
} // namespace detail

inline constexpr QColor bg = detail::colour(0.063, 0.075, 0.094);         ///< window background
inline constexpr QColor steel = detail::colour(0.149, 0.176, 0.239);      ///< panels, buttons
inline constexpr QColor steelLight = detail::colour(0.227, 0.267, 0.345); ///< raised edges, hover
inline constexpr QColor panelBlack = detail::colour(0.016, 0.027, 0.039); ///< display wells
inline constexpr QColor listBlack = detail::colour(0.020, 0.031, 0.047);  ///< playlist background
inline constexpr QColor text = detail::colour(0.804, 0.827, 0.871);
inline constexpr QColor textDim = detail::colour(0.490, 0.525, 0.596);
inline constexpr QColor green = detail::colour(0, 0.878, 0.373); ///< active indicators
inline constexpr QColor greenDim = detail::colour(0, 0.643, 0.278);
inline constexpr QColor lcd = detail::colour(0.149, 1, 0.478);             ///< display digits
inline constexpr QColor gold = detail::colour(0.788, 0.627, 0.353);        ///< accents
inline constexpr QColor selection = detail::colour(0, 0.353, 0.784, 0.35); ///< selected rows
inline constexpr QColor danger = detail::colour(0.878, 0.353, 0.290);      ///< destructive, errors

/// The type scale: 15, 13, 11 and 9 base units. Indicators are set in capitals by their writers.
enum class TextRole { Title, Body, Strong, Small, Indicator };

/// The desktop's interface family in base units, for painting under the interface's scale.
QFont font(TextRole role);

/// The same colour with an opacity of 0..1.
inline QColor faded(QColor colour, double alpha) {
    return QColor(colour.red(), colour.green(), colour.blue(), qRound(alpha * 255));
}

} // namespace quorel::Theme
