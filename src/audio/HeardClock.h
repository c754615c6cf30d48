#pragma once

#include "audio/output/Output.h"
#include "audio/rt/Renderer.h"

namespace quorel {

/// The number of the device frame that is being heard at `now`: what was written, less what the
/// server and the device still hold, carried on since the reading was taken. Never beyond what was
/// written.
int64_t heardDeviceFrame(const OutputTiming& timing, int sampleRate, std::chrono::nanoseconds now);

/// The source frame that belongs to a device frame, `latencyFrames` being the delay of the chain:
/// within a run the frame itself, in a gap after a run the end of that run.
int64_t sourceFrameAt(const rt::RenderReport& report, int64_t deviceFrame, int latencyFrames);

} // namespace quorel
