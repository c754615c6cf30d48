#include "audio/decode/FlacFile.h"

#include "audio/decode/Bytes.h"
#include "audio/decode/ChannelMask.h"

#include <algorithm>
#include <utility>

namespace quorel {

bool recognisesFlac(std::span<const std::byte> head) {
    return startsWith(head, "fLaC");
}

OpenedAudioFile openFlac(AudioSource source) {
    std::optional<FlacMetadata> metadata = FlacMetadata::read(source);
    if (!metadata) {
        return refuse("a FLAC file without a description of its format");
    }
    auto file = std::make_unique<FlacFile>(std::move(source), *metadata);
    if (file->sampleRate() < kMinSampleRate || file->sampleRate() > kMaxSampleRate) {
        return refuse("a FLAC file with a sampling rate of " + std::to_string(file->sampleRate()) +
                      " Hz");
    }
    if (!file->isPlayable()) {
        return refuse("a FLAC file without a whole frame");
    }
    return {std::move(file), {}};
}

namespace {
// The frame header that stands where the metadata say the frames start.
std::optional<FlacFrameHeader> firstHeader(const AudioSource& source,
                                           const FlacMetadata& metadata) {
    std::array<std::byte, FlacFrameHeader::kMaxBytes> bytes{};
    const std::size_t got = source.file.readAt(metadata.audioBegin, bytes);
    return FlacFrameHeader::parse(std::span(bytes).first(got), metadata.info);
}

// Where the frames start. A wrong block length leads astray; then they are looked for from the
// block on that is surely one.
int64_t framesBegin(const AudioSource& source, const FlacMetadata& metadata) {
    const bool sane = metadata.audioBegin == source.end || firstHeader(source, metadata);
    return sane ? metadata.audioBegin : metadata.infoEnd;
}
// Whether so many bytes can be all of the stream's frames: by the sizes of the smallest and the
// largest that STREAMINFO states. They are 0 where the encoder did not know.
bool canHoldAll(const FlacStreamInfo& info, int64_t bytes) {
    const auto number = [&](std::size_t at, int count) {
        return static_cast<int64_t>(loadUnsigned(&info.block[at], count, std::endian::big));
    };
    const int64_t smallestBlock = std::max<int64_t>(1, number(0, 2));
    const int64_t largestBlock = std::max<int64_t>(1, number(2, 2));
    const int64_t smallestBytes = number(4, 3);
    const int64_t largestBytes = number(7, 3);
    const bool tooFew = info.totalFrames / largestBlock * smallestBytes > bytes;
    const bool tooMany =
        largestBytes > 0 && (info.totalFrames / smallestBlock + 1) * largestBytes < bytes;
    return !tooFew && !tooMany && bytes > 0;
}
} // namespace

std::optional<AudioProperties> measureFlac(const AudioSource& source) {
    const auto metadata = FlacMetadata::read(source);
    if (!metadata || metadata->info.totalFrames == 0) {
        return std::nullopt;
    }
    const auto first = firstHeader(source, *metadata);
    const FlacStreamInfo& info = metadata->info;
    if (!first || first->sampleRate != info.sampleRate || info.sampleRate < kMinSampleRate ||
        info.sampleRate > kMaxSampleRate || !canHoldAll(info, source.end - metadata->audioBegin)) {
        return std::nullopt;
    }
    return AudioProperties{
        info.sampleRate, info.totalFrames,
        dataRateOf(source.end - metadata->audioBegin, info.totalFrames, info.sampleRate)};
}

FlacFile::FlacFile(AudioSource source, const FlacMetadata& metadata)
    : source_(std::move(source))
    , info_(metadata.info)
    , scanner_(source_.file, info_, framesBegin(source_, metadata), source_.end,
               [this] { return cancelled(); })
    , decoder_(source_.file, info_, source_.end, [this] { return cancelled(); })
    , nextOffset_(scanner_.begin()) {
    format_.sampleRate = scanner_.sampleRate();
    format_.layout = layoutOfMask(scanner_.channels(), metadata.channelMask);
    length_ = statedOrFoundLength();
    searching_ = false; // it is at the first frame
}

// Frames that end exactly where the file does tell the length more reliably than the head, which
// may not know it or be wrong. In a file that breaks off inside a frame the head knows what was
// there.
int64_t FlacFile::statedOrFoundLength() {
    if (!scanner_.hasFrames()) {
        return nextOffset_ < source_.end ? info_.totalFrames : 0;
    }
    const FlacFrame last = scanner_.last();
    const bool whole = last.nextOffset() == source_.end;
    return whole || info_.totalFrames == 0 ? last.end() : info_.totalFrames;
}

// A lone frame before unknown bytes cannot be proved without decoding it.
bool FlacFile::isPlayable() {
    return length_ == 0 || scanner_.hasFrames() || decodeNext();
}

double FlacFile::dataRate() const {
    return dataRateOf(source_.end - scanner_.begin(), length_, format_.sampleRate);
}

bool FlacFile::goToPosition() {
    if (scanner_.hasFrames()) {
        const FlacFrame start = scanner_.frameBefore(position_, length_);
        if (cancelled()) {
            return false;
        }
        nextOffset_ = start.offset;
        blockStart_ = start.start;
        block_.frames = 0;
    }
    return true;
}

// Hands out what the block has for the current position: silence up to its start, then its frames.
// Nothing when it lies before the position.
int64_t FlacFile::deliver(float* out, int64_t frames) {
    const int64_t silent = std::clamp<int64_t>(blockStart_ - position_, 0, frames);
    std::fill_n(out, silent * channels(), 0.0F);
    position_ += silent;
    const int64_t sounding = std::clamp<int64_t>(blockEnd() - position_, 0, frames - silent);
    if (sounding > 0) {
        const int64_t skipped = position_ - blockStart_;
        std::copy_n(block_.samples.begin() + skipped * channels(), sounding * channels(),
                    out + silent * channels());
        position_ += sounding;
    }
    return silent + sounding;
}

bool FlacFile::decodeNext() {
    const int64_t expected = blockEnd();
    while (nextOffset_ < source_.end) {
        const auto header = scanner_.headerAt(nextOffset_);
        if (header && !scanner_.belongs(*header)) {
            return false;
        }
        if (header && scanner_.startOf(*header) >= expected) {
            const auto outcome = decoder_.decode(nextOffset_, *header, block_);
            if (outcome == FlacDecoder::Outcome::Stopped) {
                blockStart_ = expected;
                return false;
            }
            if (outcome == FlacDecoder::Outcome::Decoded) {
                blockStart_ = scanner_.startOf(*header);
                nextOffset_ = decoder_.nextOffset();
                return true;
            }
        }
        if (!findWayOn(expected)) {
            return false;
        }
    }
    return false;
}

// Damage: goes on at the next frame that is provably one and does not lie in the past.
bool FlacFile::findWayOn(int64_t expected) {
    blockStart_ = expected;
    block_.frames = 0;
    auto frame = scanner_.frameFrom(nextOffset_ + 1);
    while (frame && frame->start < expected) {
        frame = scanner_.frameFrom(frame->nextOffset());
    }
    if (!frame && cancelled()) {
        return false; // it may yet be found
    }
    nextOffset_ = frame ? frame->offset : source_.end;
    return frame.has_value();
}

} // namespace quorel
