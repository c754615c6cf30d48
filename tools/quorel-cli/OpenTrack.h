#pragma once

#include "audio/AudioEngine.h"

#include <QString>
#include <memory>
#include <string>

namespace quorel::cli {

/// A file that can be played, or why it cannot.
struct OpenedTrack {
    std::shared_ptr<AudioFile> file;
    QString error; ///< a clause for people
};

/// Blocks on the disk. `path` is the file system's bytes.
OpenedTrack openTrack(const std::string& path);

/// All of the file, as it is.
TrackToPlay wholeFile(std::shared_ptr<AudioFile> file);

/// A line about a file for people: its path and what there is to say.
QString aboutFile(const std::string& path, const QString& text);

} // namespace quorel::cli
