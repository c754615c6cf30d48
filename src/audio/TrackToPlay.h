#pragma once

#include "audio/decode/AudioFile.h"

#include <QUuid>
#include <memory>
#include <optional>

namespace quorel {

/// What the engine is given to play: an open file and what is to be heard of it.
struct TrackToPlay {
    std::shared_ptr<AudioFile> file;
    QUuid trackID;
    double trimStart = 0;          ///< s of file time; below 0 counts as 0
    std::optional<double> trimEnd; ///< s of file time; absent is the file's end
    double normGain = 1;           ///< linear; 0 or less means none
    double startAt = 0;            ///< s of file time; where it begins when it is loaded
};

} // namespace quorel
