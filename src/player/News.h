#pragma once

#include "core/Error.h"

#include <QFlags>
#include <functional>
#include <optional>

namespace quorel {

// What PlayerController's signals and answers tell of.

/// What a change of the settings concerns.
enum class SettingsPart {
    Volume = 1, ///< volume, muting
    Balance = 2,
    Mode = 4,        ///< playback mode, shuffle
    Equalizer = 8,   ///< with its presets
    Processing = 16, ///< normalisation, compressor, tone compensation, gapless, trimming
    Fades = 32,
    Output = 64,
    Display = 128, ///< visualisation, brightness, remaining time, font size
    Window = 256,  ///< scale, always on top, playlist shown, closing, icon, resuming
};
Q_DECLARE_FLAGS(SettingsParts, SettingsPart)
Q_DECLARE_OPERATORS_FOR_FLAGS(SettingsParts)

enum class KeyNudge { Volume, Seek };

/// Hears, later, that a playlist file was read or written, or of the error why not.
using PlaylistFileDone = std::function<void(const std::optional<Error>&)>;

/// Long work in the background that the user may watch and stop.
struct Activity {
    enum class Kind { Collecting, ReadingTags, Analysing };
    Kind kind = Kind::Collecting;
    qsizetype done = 0;
    qsizetype total = 0; ///< 0 while it is not known

    bool operator==(const Activity&) const = default;
};

} // namespace quorel
