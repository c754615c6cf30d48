#pragma once

#include "audio/analysis/TrackAnalysis.h"
#include "model/AppSettings.h"

#include <functional>
#include <memory>

namespace quorel {

/// A track's file to be opened for playing it.
struct TrackToOpen {
    enum class Trim {
        Known, ///< or not wanted
        Head,  ///< to be looked for as far as there is time before a start
        Whole, ///< to be measured
    };

    QString path;
    AppSettings settings;
    Trim trim = Trim::Known;
};

struct OpenedTrack {
    std::shared_ptr<AudioFile> file; ///< null where it could not be opened
    std::optional<quorel::Trim> trim;
};

/// Opens files, on the queue for files.
using TrackOpener = std::function<OpenedTrack(const TrackToOpen&)>;

/// The one that the program uses: waits for the disk.
OpenedTrack openTrack(const TrackToOpen& wanted);

} // namespace quorel
