#pragma once

#include "audio/EngineSound.h"
#include "audio/Meter.h"
#include "audio/Segment.h"
#include "audio/SteppedRamp.h"
#include "audio/decode/SourceWorker.h"
#include "audio/output/Output.h"
#include "core/Clock.h"
#include "core/Error.h"

#include <QUuid>
#include <functional>
#include <memory>
#include <optional>
#include <set>

namespace quorel {

/// Plays tracks. Holds one current and at most one queued segment, and speaks of what is heard: the
/// position, completions and promotions follow the ear, not the buffers.
///
/// Everything here belongs to the main thread and returns at once. Times are seconds of file time.
/// Callbacks come on the main thread and may call the engine.
class AudioEngine final : public EngineSound, RenderClient, OutputListener {
  public:
    /// The clock must outlive the engine. In pumped mode the driver calls pumpSource() before each
    /// stretch that it renders.
    AudioEngine(Clock& clock, std::unique_ptr<Output> output, SourceWorker::Mode mode);
    ~AudioEngine() override;

    // --- Transport -------------------------------------------------------------------------------

    /// Starts a track, fading in over `fadeInMs`. Fails with code 1 when nothing of it is left
    /// between its trim points or its frames cannot be counted, with code 2 without a file; the
    /// engine is then stopped, the previous track still current.
    std::optional<Error> load(const TrackToPlay& track, int fadeInMs);

    /// Lets a track follow the current one without a gap. False, and nothing changes, when one is
    /// queued already, nothing is current, the rates differ by 1 Hz or more or the channel counts
    /// differ, its range is empty, or less than 0.3 s of the current track are left.
    bool preloadNext(const TrackToPlay& track);

    /// Drops the queued track without a sound and calls onQueueDiscarded; nothing when none is.
    void discardQueued();

    /// Starts the current track where it stands. Lengths below 1 ms mean at once, here and below.
    void play(int fadeInMs);
    void pause(int fadeOutMs);
    /// As play, unless it is playing already and not about to pause.
    void resume(int fadeInMs);
    /// Unloads, after a fade where something is heard.
    void stop(int fadeOutMs);
    /// Ends the sound at once and keeps the current track.
    void stopInternal();
    /// Moves to `time`, at the earliest the trim start, at the latest 50 ms before the end.
    void seek(double time);

    bool isPlaying() const { return isPlaying_; }
    bool isLoaded() const { return isLoaded_; }
    double currentTime() const { return currentTime_; }
    double duration() const { return duration_; } ///< end of the playable range in file time
    float fadeLevel() const { return fadeLevel_; }
    bool hasQueued() const { return queued_.has_value(); }

    /// Whether onNeedPreload is called.
    bool gaplessEnabled = true;

    std::function<void()> onTrackEnded;
    std::function<void(QUuid)> onGaplessPromotion;
    std::function<void()> onNeedPreload; ///< at each tick of the last 12 s while nothing is queued
    std::function<void()> onQueueDiscarded;
    std::function<void()> onStateChanged; ///< a published value has changed

    // --- Meters ----------------------------------------------------------------------------------

    const MeterValues& meters() const { return meter_.values(); }
    std::function<void()> onMetersChanged; ///< 15 times a second while playing

    // --- Output ----------------------------------------------------------------------------------

    /// Opens the output on the device with that UID, or on the system's default when it is empty.
    void openOutput(const QString& uid);
    /// Moves to a device by its number; without one the output is only restarted.
    void setOutputDevice(std::optional<uint32_t> deviceID);
    QList<OutputDevice> outputDevices() const { return output_->devices(); }
    bool isOutputOpen() const { return stream_ != 0; }
    /// Why nothing can be heard, or empty. A clear sentence for the status line.
    const QString& outputNotice() const { return outputNotice_; }
    std::function<void()> onOutputNotice; ///< outputNotice or isOutputOpen has changed
    std::function<void()> onOutputDevicesChanged;

    struct OutputCounts {
        int underflows = 0; ///< told by the server
        int underruns = 0;  ///< the decoder was too late
    };
    OutputCounts outputCounts() const { return {underflows_, underruns_}; }
    /// Frames by which the processing delays the sound, at the output's rate.
    int latencyFrames() const { return renderer_.latencyFrames(); }

    /// Pumped mode: decodes ahead, on the calling thread.
    void pumpSource() { worker_.pump(); }

  private:
    enum class FadeEnd { None, Pause, Stop };

    // RenderClient, on the output's thread.
    void render(float* interleaved, int frames) noexcept override;
    // OutputListener.
    void outputOpened(uint64_t stream, const rt::Format& format) override;
    void outputLost(const QString& reason) override;
    void outputStalled(bool stalled) override;
    void outputUnderflowed(int total) override;
    void outputDevicesChanged() override;

    // Transport.
    void scheduleCurrent(int64_t frame);
    void beginStream(int64_t frame);
    void endStream();
    void hardStop();
    void tick();
    void checkCompletion();
    void armCompletion(int64_t framesLeft);
    void segmentFinished(int callbackID);
    void promoteQueued();
    SourceWorker::Events workerEvents();
    void segmentShortened(uint64_t epoch, int segment, int64_t frames);
    void dropFailed(uint64_t epoch);
    int64_t heardFrames();
    int64_t currentEnd() const;
    double heardTime();
    void publishTime(double time);
    void changed();

    // Fades.
    void fade(float target, int ms, SteppedRamp::Done done);
    void sendFade(float target, int ms, bool fromSilence, bool thenPause);
    void endFade();

    // Meters.
    void meterTick();
    void decayMeters();

    // Output.
    void runOutput();
    void runOutputWhenPrimed(uint64_t epoch);
    void haltOutputWhenHeard();
    void freeSources();
    void setNotice(const QString& notice);

    Clock& clock_;
    std::unique_ptr<Output> output_;
    QString outputUid_;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true); // what was posted checks it
    std::vector<std::shared_ptr<rt::Source>> sources_;           // those that the renderer may hold

    std::optional<Segment> current_;
    std::optional<Segment> queued_; // only while there is a current one
    int64_t segmentStartFrame_ = 0;
    double nodeSecondsAtSegmentStart_ = 0;
    double currentSegmentDur_ = 0;
    std::set<int> validCallbackIDs_;
    int callbackCounter_ = 0;
    int currentCallbackID_ = 0;
    int queuedCallbackID_ = 0;

    uint64_t epoch_ = 0;              // of the newest stream
    int64_t framesBeforeCurrent_ = 0; // source frames of the stream before the current segment
    int segmentNumber_ = 0;           // of the current segment within the stream
    int64_t heard_ = 0;               // device frames of the stream; never goes back

    bool isPlaying_ = false;
    bool isLoaded_ = false;
    double currentTime_ = 0;
    double duration_ = 0;
    FadeEnd fadeEnd_ = FadeEnd::None;
    float fadeLevel_ = 1;

    rt::Format format_;
    uint64_t stream_ = 0; // of the output; 0 while none is open
    bool outputRuns_ = false;
    int idleTicks_ = 0;
    QString outputNotice_;
    int underflows_ = 0;
    int underruns_ = 0;

    SteppedRamp fadeRamp_;
    Meter meter_;
    std::unique_ptr<Timer> timer_;
    std::unique_ptr<Timer> visTimer_;
    std::unique_ptr<Timer> completionTimer_;
    SourceWorker worker_; // last: its events must find the rest in place
};

} // namespace quorel
