#include "audio/decode/SourceStream.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <numeric>

namespace quorel {

namespace {
/// Source frames read at a time, unless the ring is too small for what they become.
constexpr int64_t kMostChunkFrames = 4096;
/// Enough to start with: a server's first request with room to spare.
constexpr double kPrimeSeconds = 0.25;
/// How much of a track is read again to rebuild the converter's memory at a join.
constexpr double kConverterMemorySeconds = 0.05;
/// Longer than half the converter's filter: how far ahead a frame can feel what follows it.
constexpr double kConverterReachSeconds = 0.02;
/// The current segment, the one queued behind it, and the one before that is still heard.
constexpr std::size_t kRemembered = 3;

std::size_t samples(int64_t frames, int channels) {
    return static_cast<std::size_t>(frames) * static_cast<std::size_t>(channels);
}
} // namespace

int64_t deviceFrames(int64_t frames, int sourceRate, int deviceRate) {
    if (sourceRate == deviceRate) {
        return frames;
    }
    // In whole seconds and a rest, so that no product overflows for any length of file.
    const int64_t seconds = frames / sourceRate;
    const int64_t rest = frames % sourceRate;
    return seconds * deviceRate + (rest * deviceRate * 2 + sourceRate) / (2 * int64_t{sourceRate});
}

SourceStream::SourceStream(std::shared_ptr<rt::Source> sink, const rt::Format& device,
                           SourceSegment first, Shortened shortened)
    : sink_(std::move(sink))
    , device_(device)
    , shortened_(std::move(shortened))
    , sourceRate_(first.file->sampleRate())
    , converter_(device.channels(), sourceRate_, device.sampleRate)
    , chunk_(std::clamp<int64_t>(
          deviceFrames(sink_->ring.capacity() / 8, device.sampleRate, sourceRate_), 16,
          kMostChunkFrames))
    , chunkOutput_(deviceFrames(chunk_, sourceRate_, device.sampleRate) + 64) {
    fileFrames_.resize(samples(chunk_, first.file->channels()));
    mapped_.resize(samples(chunk_, device_.channels()));
    converted_.resize(samples(chunkOutput_, device_.channels()));
    append(std::move(first));
}

void SourceStream::append(SourceSegment segment) {
    segments_.push_back(std::move(segment));
    if (segments_.size() == 1) {
        beginSegment();
    }
}

void SourceStream::beginSegment() {
    const SourceSegment& segment = segments_.front();
    segmentRead_ = 0;
    mapper_.emplace(segment.file->format().layout, device_.layout);
    segment.file->seek(segment.from);
    begun_.push_back({segment, segmentStart_});
    if (begun_.size() > kRemembered) {
        begun_.pop_front();
    }
}

// A file that gave out early makes its segment shorter; what follows moves up.
void SourceStream::endSegment() {
    const SourceSegment& segment = segments_.front();
    if (segmentRead_ < segment.to - segment.from) {
        shortened_(segment_, segmentRead_);
    }
    begun_.back().segment.to = segment.from + segmentRead_;
    segmentStart_ += segmentRead_;
    ++segment_;
    segments_.pop_front();
    if (!segments_.empty()) {
        beginSegment();
    }
}

bool SourceStream::fill() {
    if (segments_.empty() || finished_ || sink_->ring.writable() < 2 * chunkOutput_) {
        return false;
    }
    const SourceSegment segment = segments_.front();
    const int64_t wanted = std::min(chunk_, segment.to - segment.from - segmentRead_);
    const int64_t got = wanted > 0 ? segment.file->read(fileFrames_.data(), wanted) : 0;
    if (got < wanted && segment.file->cancelled()) {
        return false; // a newer order waits
    }
    if (got > 0) {
        mapper_->map(fileFrames_.data(), mapped_.data(), got);
        convert(mapped_.data(), got);
        segmentRead_ += got;
    }
    if (got < wanted || segmentRead_ >= segment.to - segment.from) {
        endSegment();
    }
    primeWhenEnough();
    return true;
}

void SourceStream::primeWhenEnough() {
    if (sink_->ring.level() >= std::lround(kPrimeSeconds * device_.sampleRate)) {
        sink_->primed.store(true, std::memory_order_release);
    }
}

void SourceStream::convert(const float* frames, int64_t count) {
    if (converter_.passthrough()) {
        write(frames, count);
        return;
    }
    while (count > 0) {
        const auto [consumed, produced] =
            converter_.process(frames, count, converted_.data(), chunkOutput_);
        write(converted_.data(), produced);
        frames += consumed * device_.channels();
        count -= consumed;
        if (consumed == 0 && produced == 0) {
            return;
        }
    }
}

void SourceStream::write(const float* frames, int64_t count) {
    const int64_t skipped = std::min(skip_, count);
    skip_ -= skipped;
    sink_->ring.write(frames + skipped * device_.channels(), count - skipped);
}

void SourceStream::finish() {
    if (finished_) {
        return;
    }
    finished_ = true;
    const int64_t end = deviceFrames(segmentStart_, sourceRate_, device_.sampleRate);
    // The converter's last frames; exactly as many as the stream's length asks for.
    int64_t missing = end - sink_->ring.writePosition();
    while (missing > 0 && !converter_.passthrough()) {
        const int64_t produced = converter_.drain(converted_.data(), chunkOutput_);
        if (produced == 0) {
            break;
        }
        write(converted_.data(), std::min(produced, missing + skip_));
        missing = end - sink_->ring.writePosition();
    }
    std::ranges::fill(converted_, 0.0F);
    while (missing > 0) {
        const int64_t padded =
            sink_->ring.write(converted_.data(), std::min(missing, chunkOutput_));
        if (padded == 0) {
            break;
        }
        missing -= padded;
    }
    sink_->end.store(sink_->ring.writePosition(), std::memory_order_release);
    sink_->primed.store(true, std::memory_order_release);
}

bool SourceStream::dropLast() {
    if (segments_.size() > 1) {
        segments_.pop_back();
        return true; // not one frame of it has been read
    }
    if (begun_.size() < 2 || finished_) {
        return false;
    }
    // It has been begun: go back to the join before it.
    if (segments_.empty()) {
        --segment_; // and even read to its end
    }
    segments_.clear();
    segmentStart_ = begun_.back().start;
    begun_.pop_back();
    int64_t join = deviceFrames(segmentStart_, sourceRate_, device_.sampleRate);
    if (!converter_.passthrough()) {
        // The frames just before the join have heard of what came after it.
        join =
            std::max<int64_t>(0, join - std::lround(kConverterReachSeconds * device_.sampleRate));
    }
    if (!sink_->ring.rewind(join)) {
        return false;
    }
    return converter_.passthrough() || restartConverterAt(sink_->ring.writePosition());
}

// Feeds a fresh converter with the end of the segment before the join, from a source frame that
// falls exactly on a device frame, so that it goes on as if it had never seen the dropped segment.
bool SourceStream::restartConverterAt(int64_t deviceFrame) {
    const Begun& previous = begun_.back();
    assert(sourceRate_ > 0);
    const int64_t grid = sourceRate_ / std::gcd(sourceRate_, device_.sampleRate);
    const auto memory = std::lround(kConverterMemorySeconds * sourceRate_);
    const int64_t resume = deviceFrames(deviceFrame, device_.sampleRate, sourceRate_);
    const int64_t begin = (resume - memory) / grid * grid;
    if (begin < previous.start) {
        return false;
    }
    converter_.reset();
    skip_ = deviceFrame - deviceFrames(begin, sourceRate_, device_.sampleRate);
    segments_.push_front(previous.segment);
    mapper_.emplace(previous.segment.file->format().layout, device_.layout);
    --segment_;
    segmentStart_ = previous.start;
    segmentRead_ = begin - previous.start;
    return previous.segment.file->seek(previous.segment.from + segmentRead_);
}

} // namespace quorel
