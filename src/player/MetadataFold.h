#pragma once

#include "model/Track.h"

#include <functional>

namespace quorel {

/// Whether length, data rate or sampling rate of the track's file are not known yet.
bool needsMetadata(const Track& track);

/// The track with what reading its file gave. An empty title or artist leaves the one there is. A
/// length and rates that could not be read stay as they were known, and so do tags, unless the file
/// could be read: then it has no such tags any more.
Track withMetadata(Track track, const TrackMetadata& read);

/// The reading with a data rate estimated from the file's size in bytes (0 where that is not known)
/// where it has none. The size is asked for only then.
TrackMetadata withEstimatedBitrate(TrackMetadata read, const std::function<qint64()>& fileSize);

} // namespace quorel
