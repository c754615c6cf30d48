#pragma once

#include "audio/TrackToPlay.h"
#include "audio/output/Output.h"
#include "core/Error.h"
#include "model/Enumerations.h"
#include "model/MeterValues.h"

#include <functional>
#include <optional>

namespace quorel {

/// What those who control playback need of a sound engine. It holds one current and at most one
/// queued track, and speaks of what is heard. Main thread; every call returns at once. Times are
/// seconds of file time; lengths of fades below 1 ms mean at once.
class PlayerEngine {
  public:
    virtual ~PlayerEngine() = default;
    PlayerEngine(const PlayerEngine&) = delete;
    PlayerEngine& operator=(const PlayerEngine&) = delete;

    // --- Transport -------------------------------------------------------------------------------

    /// Starts a track, fading in over `fadeInMs`. Fails with code 1 when nothing of it is left
    /// between its trim points or its frames cannot be counted, with code 2 without a file; the
    /// engine is then stopped, the previous track still current.
    virtual std::optional<Error> load(const TrackToPlay& track, int fadeInMs) = 0;

    /// Lets a track follow the current one without a gap. False, and nothing changes, when one is
    /// queued already, nothing is current, the rates differ by 1 Hz or more or the channel counts
    /// differ, its range is empty, or less than 0.3 s of the current track are left.
    virtual bool preloadNext(const TrackToPlay& track) = 0;

    /// Drops the queued track without a sound and calls onQueueDiscarded; nothing when none is.
    virtual void discardQueued() = 0;

    virtual void pause(int fadeOutMs) = 0;
    /// Starts the current track where it stands, unless it is playing and not about to pause.
    virtual void resume(int fadeInMs) = 0;
    /// Unloads, after a fade where something is heard. A queued track is dropped unannounced.
    virtual void stop(int fadeOutMs) = 0;
    /// Moves to `time`, at the earliest the trim start, at the latest 50 ms before the end.
    virtual void seek(double time) = 0;

    virtual bool isPlaying() const = 0;
    virtual bool isLoaded() const = 0;
    virtual double currentTime() const = 0;
    virtual double duration() const = 0; ///< end of the playable range in file time
    virtual bool hasQueued() const = 0;

    /// Whether onNeedPreload is called.
    bool gaplessEnabled = true;

    std::function<void()> onTrackEnded;
    std::function<void(QUuid)> onGaplessPromotion;
    std::function<void()> onNeedPreload; ///< at each tick of the last 12 s while nothing is queued
    std::function<void()> onQueueDiscarded;
    std::function<void()> onStateChanged; ///< a published value has changed

    // --- Sound -----------------------------------------------------------------------------------

    virtual void setVolume(double volume) = 0;               ///< linear, 0..1; muting is 0
    virtual void setPan(double pan) = 0;                     ///< -1 (left) to 1 (right)
    virtual void setNormGain(double gain, bool instant) = 0; ///< linear
    virtual void setEqEnabled(bool enabled) = 0;
    /// Bands beyond the last are ignored. Heard at once while the equaliser is on.
    virtual void setEQGain(int index, float db) = 0;
    /// Bass and treble lift for a volume of 0..1, more of it the lower the volume is.
    virtual void setLoudness(bool on, double volume, LoudnessStrength strength) = 0;
    virtual void setCompressor(bool on, CompressorPreset preset) = 0;

    virtual const MeterValues& meters() const = 0;
    std::function<void()> onMetersChanged; ///< 15 times a second while playing

    // --- Output ----------------------------------------------------------------------------------

    /// Opens the output on the device with that UID, or on the system's default when it is empty.
    virtual void openOutput(const QString& uid) = 0;
    virtual QList<OutputDevice> outputDevices() const = 0;
    /// Why nothing can be heard, or empty. A clear sentence for the status line.
    virtual const QString& outputNotice() const = 0;
    std::function<void()> onOutputNotice; ///< outputNotice may have changed
    std::function<void()> onOutputDevicesChanged;

  protected:
    PlayerEngine() = default;
};

} // namespace quorel
