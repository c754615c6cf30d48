#pragma once

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

namespace quorel {

enum class PlaybackMode { Normal, StopAfter, One, All };
enum class CompressorPreset { Gentle, Warm, Radio, Punch, Maximum };
enum class LoudnessStrength { Gentle, Medium, Strong };
enum class VisualizationMode { Spectrum, Scope, Vu, Led, Off };
enum class CharacterFX { Off, Vinyl, Tape };
enum class TapeType { Ferric, Chrome, Metal };

/// The raw strings by which an enumeration is stored, in the order of its cases.
template <class Enum>
inline constexpr std::array<std::string_view, 0> kRawValues{};
template <>
inline constexpr auto kRawValues<PlaybackMode> =
    std::to_array<std::string_view>({"normal", "stopAfter", "one", "all"});
template <>
inline constexpr auto kRawValues<CompressorPreset> =
    std::to_array<std::string_view>({"gentle", "warm", "radio", "punch", "maximum"});
template <>
inline constexpr auto
    kRawValues<LoudnessStrength> = std::to_array<std::string_view>({"gentle", "medium", "strong"});
template <>
inline constexpr auto kRawValues<VisualizationMode> =
    std::to_array<std::string_view>({"spectrum", "scope", "vu", "led", "off"});
template <>
inline constexpr auto kRawValues<CharacterFX> = std::to_array<std::string_view>({"off", "vinyl",
                                                                                 "tape"});
template <>
inline constexpr auto kRawValues<TapeType> = std::to_array<std::string_view>({"ferric", "chrome",
                                                                              "metal"});

template <class Enum>
concept StoredEnum = !kRawValues<Enum>.empty();

/// All cases in order, as pickers offer them.
template <StoredEnum Enum>
inline constexpr auto kAllCases = [] {
    std::array<Enum, kRawValues<Enum>.size()> cases{};
    for (std::size_t i = 0; i < cases.size(); ++i)
        cases[i] = static_cast<Enum>(i);
    return cases;
}();

template <StoredEnum Enum>
constexpr std::string_view rawValue(Enum value) {
    return kRawValues<Enum>[static_cast<std::size_t>(value)];
}

/// The case of that raw string, or nothing where it is none of them.
template <StoredEnum Enum>
constexpr std::optional<Enum> fromRawValue(std::string_view raw) {
    const auto found = std::ranges::find(kRawValues<Enum>, raw);
    if (found == kRawValues<Enum>.end())
        return std::nullopt;
    return static_cast<Enum>(found - kRawValues<Enum>.begin());
}

/// The words of a picker.
constexpr std::string_view displayLabel(LoudnessStrength strength) {
    constexpr std::array<std::string_view, 3> kLabels = {"Gentle", "Medium", "Strong"};
    return kLabels[static_cast<std::size_t>(strength)];
}

} // namespace quorel
