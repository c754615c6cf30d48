#pragma once

#include "audio/PlayerEngine.h"
#include "core/Clock.h"

#include <algorithm>
#include <string>

namespace quorel::test {

/// An engine without sound: tracks pass by on the clock in steps of 0.2 s. What it was told is kept
/// in `log`: L load, Q queue, D discard, p pause, r resume, s stop, k seek, each fade in ms behind.
class FakeEngine final : public PlayerEngine {
  public:
    explicit FakeEngine(Clock& clock)
        : clock_(clock)
        , timer_(clock.startTimer(std::chrono::milliseconds(200), Clock::Repeat::Always,
                                  [this] { tick(); })) {}

    std::optional<Error> load(const TrackToPlay& track, int fadeInMs) override {
        note('L', fadeInMs);
        fade_.reset();
        queued_.reset();
        playing_ = false;
        if (!track.file || endOf(track) <= track.trimStart)
            return Error{1, QStringLiteral("nothing to play")};
        current = track;
        normGain = track.normGain;
        position_ = std::max(track.startAt, track.trimStart);
        playing_ = true;
        changed();
        return std::nullopt;
    }
    bool preloadNext(const TrackToPlay& track) override {
        if (queued_ || !current.file || track.file->sampleRate() != current.file->sampleRate()) {
            log += 'x';
            return false;
        }
        note('Q', 0);
        queued_ = track;
        return true;
    }
    void discardQueued() override {
        if (!queued_)
            return;
        log += 'D';
        queued_.reset();
        onQueueDiscarded();
    }
    void pause(int fadeOutMs) override {
        note('p', fadeOutMs);
        fadeThen(fadeOutMs, [this] { playing_ = false; });
    }
    void resume(int fadeInMs) override {
        note('r', fadeInMs);
        fade_.reset();
        playing_ = current.file != nullptr;
    }
    void stop(int fadeOutMs) override {
        note('s', fadeOutMs);
        fadeThen(playing_ ? fadeOutMs : 0, [this] {
            playing_ = false;
            current = {};
            queued_.reset();
            position_ = 0;
        });
    }
    void seek(double time) override {
        log += 'k';
        position_ = std::clamp(time, current.trimStart, std::max(duration() - 0.05, 0.0));
        if (queued_) {
            queued_.reset();
            onQueueDiscarded();
        }
        changed();
    }

    bool isPlaying() const override { return playing_; }
    bool isLoaded() const override { return current.file != nullptr; }
    double currentTime() const override { return position_; }
    double duration() const override { return current.file ? endOf(current) : 0; }
    bool hasQueued() const override { return queued_.has_value(); }

    void setVolume(double value) override { volume = value; }
    void setPan(double value) override { pan = value; }
    void setNormGain(double gain, bool) override { normGain = gain; }
    void setEqEnabled(bool value) override { eqEnabled = value; }
    void setEQGain(int index, float db) override { eqGains.at(std::size_t(index)) = db; }
    void setLoudness(bool on, double atVolume, LoudnessStrength) override {
        loudnessAt = on ? atVolume : -1;
    }
    void setCompressor(bool, CompressorPreset) override {}
    const MeterValues& meters() const override { return meters_; }
    void openOutput(const QString& uid) override { output = uid.toStdString(); }
    QList<OutputDevice> outputDevices() const override { return devices; }
    const QString& outputNotice() const override { return notice; }

    std::string takeLog() { return std::exchange(log, {}); }

    TrackToPlay current;
    std::string log;
    double volume = -1;
    double pan = 0;
    double normGain = 1;
    bool eqEnabled = false;
    std::array<float, 10> eqGains{};
    double loudnessAt = -1;
    std::string output = "closed";
    QList<OutputDevice> devices;
    QString notice;

  private:
    static double endOf(const TrackToPlay& track) {
        return track.trimEnd.value_or(static_cast<double>(track.file->length()) /
                                      track.file->sampleRate());
    }
    void note(char what, int fadeMs) {
        log += what;
        if (fadeMs > 0)
            log += std::to_string(fadeMs);
    }
    void fadeThen(int ms, std::function<void()> done) {
        const auto end = [this, done = std::move(done)] {
            done();
            changed();
        };
        fade_ = ms < 1 ? nullptr
                       : clock_.startTimer(std::chrono::milliseconds(ms), Clock::Repeat::Once, end);
        if (!fade_)
            end();
    }
    void changed() { onStateChanged(); }

    void tick() {
        if (!playing_)
            return;
        position_ = std::min(position_ + 0.2, duration());
        changed();
        if (position_ >= duration() && !fade_)
            finish();
        else if (gaplessEnabled && !queued_ && duration() - position_ < 12)
            onNeedPreload();
    }
    void finish() {
        if (!queued_) {
            playing_ = false;
            onTrackEnded();
            return;
        }
        current = *std::exchange(queued_, {});
        position_ = current.trimStart;
        changed();
        onGaplessPromotion(current.trackID);
    }

    Clock& clock_;
    std::optional<TrackToPlay> queued_;
    double position_ = 0;
    bool playing_ = false;
    MeterValues meters_;
    std::unique_ptr<Timer> fade_;
    std::unique_ptr<Timer> timer_;
};

} // namespace quorel::test
