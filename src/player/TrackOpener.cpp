#include "player/TrackOpener.h"

#include "audio/PlaybackSettings.h"
#include "model/Path.h"

namespace quorel {

OpenedTrack openTrack(const TrackToOpen& wanted) {
    OpenedTrack opened;
    opened.file = AudioFile::open(pathToBytes(wanted.path).toStdString()).file;
    if (!opened.file || !wanted.settings.trimSilence)
        return opened;
    if (wanted.trim == TrackToOpen::Trim::Head)
        opened.trim = trimHeadFor(wanted.settings, *opened.file);
    else if (wanted.trim == TrackToOpen::Trim::Whole)
        opened.trim = trimFor(wanted.settings, *opened.file);
    return opened;
}

} // namespace quorel
