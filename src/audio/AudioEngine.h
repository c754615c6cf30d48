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

/// Plays tracks. The position, completions and promotions follow the ear, not the buffers.
/// Callbacks come on the main thread and may call the engine.
class AudioEngine final : public EngineSound, RenderClient, OutputListener {
  public:
    /// The clock must outlive the engine. In pumped mode the driver calls pumpSource() before each
    /// stretch that it renders.
    AudioEngine(Clock& clock, std::unique_ptr<Output> output, SourceWorker::Mode mode);
    ~AudioEngine() override;

    std::optional<Error> load(const TrackToPlay& track, int fadeInMs) override;
    bool preloadNext(const TrackToPlay& track) override;
    void discardQueued() override;
    /// Starts the current track where it stands.
    void play(int fadeInMs);
    void pause(int fadeOutMs) override;
    void resume(int fadeInMs) override;
    void stop(int fadeOutMs) override;
    /// Ends the sound at once and keeps the current track.
    void stopInternal();
    void seek(double time) override;

    bool isPlaying() const override { return isPlaying_; }
    bool isLoaded() const override { return isLoaded_; }
    double currentTime() const override { return currentTime_; }
    double duration() const override { return duration_; }
    float fadeLevel() const { return fadeLevel_; }
    bool hasQueued() const override { return queued_.has_value(); }

    const MeterValues& meters() const override { return meter_.values(); }

    void openOutput(const QString& uid) override;
    /// Moves to a device by its number; without one the output is only restarted.
    void setOutputDevice(std::optional<uint32_t> deviceID);
    QList<OutputDevice> outputDevices() const override { return output_->devices(); }
    bool isOutputOpen() const { return stream_ != 0; }
    const QString& outputNotice() const override { return outputNotice_; }

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
    void runMeters();
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
