#pragma once

#include "model/Track.h"

namespace quorel {

/// Reads what a file says of itself.
struct MetadataReader {
    /// Length, sampling rate and data rate as playing the file would give them, and its tags:
    /// title, artist and album of any format, all else of ID3v2 alone (mp3, aac, aiff and wav).
    /// Where a tag has a field twice, the later one counts; comments that iTunes writes for itself
    /// are none. Never fails: whatever cannot be read is absent, as are empty texts. Blocks on the
    /// disk, so never on the main thread; any other thread. `path` as in model/Path.h.
    static TrackMetadata read(const QString& path);
};

} // namespace quorel
