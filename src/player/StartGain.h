#pragma once

#include "model/AppSettings.h"
#include "player/TrackList.h"

namespace quorel {

/// The linear gain at which a track starts, 1 without normalisation. With levels not known yet it
/// is the median gain of the tracks of its folder in that list whose levels are known, else -6 dB.
double startGain(const AppSettings& settings, const Track& track, const TrackList& list);

} // namespace quorel
