#include "audio/decode/MpegFile.h"

#include <algorithm>
#include <utility>

namespace quorel {

OpenedAudioFile openMpeg(AudioSource source) {
    auto file = std::make_unique<MpegFile>(std::move(source));
    std::string error;
    if (!file->open(error)) {
        return refuse(error);
    }
    return {std::move(file), {}};
}

namespace {
// The bytes of the frames behind an info tag where it can be believed unseen: what it says of the
// stream's size is true, so nothing is cut off or put behind it. 0 where it cannot. Some encoders
// leave the tag's own frame out of the size.
int64_t provenBytes(const MpegInfoTag& tag, int64_t streamBytes, int tagBytes) {
    const int64_t unstated = streamBytes - tag.bytes;
    const bool proven = tag.intact && tag.knowsDelay() && tag.count > 0 && tag.bytes > tagBytes &&
                        unstated >= 0 && unstated <= tagBytes;
    return !proven ? 0 : unstated == tagBytes ? tag.bytes : tag.bytes - tagBytes;
}
} // namespace

std::optional<AudioProperties> measureMpeg(const AudioSource& source) {
    MpegWalker walker(source, [] { return false; });
    if (!walker.findStream() || !walker.next() || walker.frame().isAac()) {
        return std::nullopt; // AAC's headers do not tell its rate
    }
    const MpegFrame first = walker.frame();
    const int64_t begin = walker.offset();
    const auto tag = MpegInfoTag::read(walker.packet(), first);
    int64_t packets = tag ? tag->count : 0;
    int64_t bytes = tag ? provenBytes(*tag, source.end - begin, first.bytes) : 0;
    if (bytes == 0) {
        walker.moveTo(begin);
        const MpegIndex index(walker);
        packets = index.count();
        bytes = index.bytes();
    }
    if (packets == 0) {
        return std::nullopt;
    }
    return AudioProperties{first.sampleRate,
                           MpegInfoTag::soundIn(tag, packets, first.frames).length,
                           dataRateOf(bytes, packets * first.frames, first.sampleRate)};
}

MpegFile::MpegFile(AudioSource source)
    : source_(std::move(source))
    , walker_(source_, [this] { return cancelled(); }) {}

bool MpegFile::open(std::string& error) {
    if (!walker_.findStream()) {
        error = "not an audio file of a known format";
        return false;
    }
    index_.emplace(walker_);
    if (index_->count() == 0) {
        error = "an MPEG audio file without a whole frame";
        return false;
    }
    if (!learnFormat(error)) {
        return false;
    }
    const auto sound = MpegInfoTag::soundIn(index_->tag(), index_->count(), packetFrames_);
    origin_ = sound.origin;
    length_ = sound.length;
    return true;
}

// The headers do not tell all: AAC may extend its band to twice the rate, and its channels by what
// comes inside the frames. The extension may miss the first frames.
bool MpegFile::learnFormat(std::string& error) {
    constexpr int kEnough = 4;
    constexpr int kMaxDamaged = 64; // 1.5 s
    index_->moveTo(walker_, 0);
    int decoded = 0;
    for (int i = 0; i < kMaxDamaged && decoded < kEnough && walker_.next(); ++i) {
        const MpegFrame frame = walker_.frame();
        if (!decoder_) {
            decoder_ = CodecDecoder::open(frame.codec, {}, frame.sampleRate,
                                          std::max(1, frame.channels), error);
            if (!decoder_) {
                return false;
            }
        }
        block_.clear();
        if (decoder_->decode(walker_.packet(), block_) && !block_.empty()) {
            ++decoded;
            format_ = {decoder_->sampleRate(), decoder_->layout()};
            packetFrames_ =
                static_cast<int64_t>(frame.frames) * format_.sampleRate / frame.sampleRate;
        }
    }
    if (decoded == 0 || packetFrames_ == 0) {
        error = "an MPEG audio file whose frames cannot be decoded";
        return false;
    }
    return true;
}

double MpegFile::dataRate() const {
    return dataRateOf(index_->bytes(), index_->count() * packetFrames_, format_.sampleRate);
}

// Ends with the packet before the position's decoded.
bool MpegFile::goToPosition() {
    const int64_t target = (position_ + origin_) / packetFrames_;
    const auto start = index_->decodeFrom(walker_, target);
    if (!start || !index_->moveTo(walker_, *start)) {
        return false;
    }
    // An AAC decoder keeps what it has learned and hears again only now and then, such as the
    // band's extension; its overlap is overwritten on the way to the target, where there is a way.
    if (*start == 0 || !walker_.frame().isAac()) {
        decoder_->reset();
    }
    nextPacket_ = *start;
    blockFrames_ = 0;
    while (nextPacket_ < target) {
        if (cancelled() || !decodeNext()) {
            return false;
        }
    }
    return true;
}

// Decodes the next packet into the block, which then is as long as a packet whatever comes out.
bool MpegFile::decodeNext() {
    if (nextPacket_ >= index_->count() || !walker_.next()) {
        return false;
    }
    block_.clear();
    const auto samples = static_cast<std::size_t>(packetFrames_ * channels());
    decoder_->decode(walker_.packet(), block_);
    if (decoder_->sampleRate() != sampleRate() || decoder_->channels() != channels()) {
        block_.clear(); // damage that looks like another format
    }
    block_.resize(samples, 0.0F);
    blockFrames_ = packetFrames_;
    ++nextPacket_;
    return true;
}

// Hands out what the block has from the current position on.
int64_t MpegFile::deliver(float* out, int64_t frames) {
    const int64_t count = std::min(frames, blockEnd() - position_);
    const int64_t skipped = position_ - blockStart();
    std::copy_n(block_.begin() + skipped * channels(), count * channels(), out);
    position_ += count;
    return count;
}

} // namespace quorel
