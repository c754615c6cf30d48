#pragma once

#include <QString>
#include <algorithm>
#include <array>

namespace quorel {

inline constexpr int kEqBands = 10;

/// A built-in equaliser curve.
struct EqPreset {
    QLatin1StringView name;
    std::array<double, kEqBands> gains; ///< dB, lowest band first
};

inline constexpr std::array<EqPreset, 6> kEqPresets = {{
    {QLatin1StringView("flat"), {0, 0, 0, 0, 0, 0, 0, 0, 0, 0}},
    {QLatin1StringView("rock"), {5, 4, 3, 1, -1, -1, 1, 3, 4, 5}},
    {QLatin1StringView("pop"), {-1, 1, 3, 4, 3, 1, 0, -1, -1, -2}},
    {QLatin1StringView("jazz"), {3, 2, 1, 2, -1, -1, 0, 1, 2, 3}},
    {QLatin1StringView("vocal"), {-2, -1, 0, 2, 4, 4, 3, 1, 0, -1}},
    {QLatin1StringView("bass"), {7, 6, 5, 3, 1, 0, 0, 0, 0, 0}},
}};

/// The built-in preset of that name, or null.
inline const EqPreset* findEqPreset(QStringView name) {
    const auto found = std::ranges::find_if(
        kEqPresets, [name](const EqPreset& preset) { return preset.name == name; });
    return found == kEqPresets.end() ? nullptr : &*found;
}

} // namespace quorel
