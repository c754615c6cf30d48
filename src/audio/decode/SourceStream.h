#pragma once

#include "audio/decode/AudioFile.h"
#include "audio/decode/ChannelMapper.h"
#include "audio/decode/RateConverter.h"
#include "audio/rt/Source.h"

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace quorel {

/// A part of a file that is to be heard: frames from..to of it, at the file's own rate.
struct SourceSegment {
    std::shared_ptr<AudioFile> file;
    int64_t from = 0;
    int64_t to = 0;
};

/// Number of the device-rate frame that source-rate frame `frames` of a stream falls on: rounded
/// once from the stream's start, so that joins never drift.
int64_t deviceFrames(int64_t frames, int sourceRate, int deviceRate);

/// Fills one rt::Source: reads segments one after the other, brings them to the device's channels
/// and rate through one unbroken converter, and keeps the ring full. All segments of a stream have
/// one rate and one channel count. Belongs to one thread; reading blocks on the disk.
class SourceStream {
  public:
    /// Told when a file gave out early: segment number (0 is the first), frames it really had.
    using Shortened = std::function<void(int segment, int64_t frames)>;

    SourceStream(std::shared_ptr<rt::Source> sink, const rt::Format& device, SourceSegment first,
                 Shortened shortened);

    uint64_t epoch() const { return sink_->epoch; }
    const SourceSegment& readSegment() const { return segments_.front(); }

    /// Adds a segment behind the last one. Not after finish().
    void append(SourceSegment segment);

    /// Takes the last segment back, with what was already written of it. False when it is too late
    /// because some of it has been played; the stream is of no use then.
    bool dropLast();

    /// Writes about a tenth of a second more. False when the ring is full enough or nothing is left
    /// to read, or the file's read was cancelled.
    bool fill();

    /// Whether every frame of every segment has been read.
    bool isExhausted() const { return segments_.empty(); }
    /// Writes what the converter still holds and marks the end of the stream.
    void finish();
    bool isFinished() const { return finished_; }

    /// Whether there is enough in the ring to start with.
    bool isPrimed() const { return sink_->primed.load(std::memory_order_relaxed); }
    int64_t ringLevel() const { return sink_->ring.level(); }

  private:
    struct Begun {
        SourceSegment segment;
        int64_t start = 0; // in source frames since the stream's start
    };

    void beginSegment();
    void endSegment();
    void convert(const float* frames, int64_t count);
    void write(const float* frames, int64_t count);
    bool restartConverterAt(int64_t deviceFrame);
    void primeWhenEnough();

    std::shared_ptr<rt::Source> sink_;
    rt::Format device_;
    Shortened shortened_;
    int sourceRate_;
    RateConverter converter_;
    const int64_t chunk_;       // source frames read at a time
    const int64_t chunkOutput_; // device frames that they become at most
    std::optional<ChannelMapper> mapper_;
    std::deque<SourceSegment> segments_; // the one being read, then those to come
    std::deque<Begun> begun_;            // the last few segments begun, the newest last
    int segment_ = 0;                    // number of the one being read
    int64_t segmentStart_ = 0;           // its start, in source frames since the stream's start
    int64_t segmentRead_ = 0;            // frames of it read so far
    int64_t skip_ = 0;                   // device frames to drop after a restart of the converter
    bool finished_ = false;
    std::vector<float> fileFrames_, mapped_, converted_;
};

} // namespace quorel
