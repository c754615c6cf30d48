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
    measure(*index_);
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

// An info tag counts the frames that the encoder wrote. Where there are fewer the file is cut and
// its end lacks the padding; a few more are what the encoder forgot to count; many more are other
// streams behind this one.
void MpegFile::measure(const MpegIndex& index) {
    constexpr int64_t kUncounted = 2;
    const int64_t decoded = index.count() * packetFrames_;
    int64_t end = decoded;
    if (index.tag() && index.tag()->knowsDelay()) {
        const MpegInfoTag& tag = *index.tag();
        origin_ = tag.delay + MpegInfoTag::kDecoderDelay;
        if (tag.count > 0 && index.count() >= tag.count &&
            index.count() <= tag.count + kUncounted) {
            const int64_t padding = tag.padding - MpegInfoTag::kDecoderDelay;
            end = std::min(decoded, tag.count * packetFrames_ - padding);
        }
    }
    length_ = std::max<int64_t>(0, end - origin_);
}

double MpegFile::dataRate() const {
    const auto frames = static_cast<double>(index_->count() * packetFrames_);
    return 8.0 * static_cast<double>(index_->bytes()) * format_.sampleRate / frames;
}

bool MpegFile::seek(int64_t frame) {
    position_ = std::clamp<int64_t>(frame, 0, length_);
    searching_ = searching_ || position_ < blockStart() || position_ >= blockEnd();
    return true;
}

int64_t MpegFile::read(float* interleaved, int64_t frames) {
    const int64_t wanted = std::min(frames, length_ - position_);
    int64_t done = 0;
    while (done < wanted && !cancelled()) {
        if (searching_ && !goToPosition()) {
            break;
        }
        if (position_ >= blockEnd() && !decodeNext()) {
            break;
        }
        done += deliver(interleaved + done * channels(), wanted - done);
    }
    return done;
}

// Done by the read behind a seek, so that cancel() can interrupt it too. It ends with the packet
// before the position's decoded.
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
    searching_ = false;
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
