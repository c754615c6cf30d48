#include "audio/decode/PacketFile.h"

#include <algorithm>
#include <utility>

namespace quorel {

namespace {
constexpr uint32_t kMaxPacketBytes = 4 << 20; // more is damage

// Packets before a place that must be decoded for its sound to be right: AAC's overlap and the
// state behind it, MP3's reservoir of up to 511 bytes in frames of at least 24.
std::size_t preRollOf(CodecDecoder::Codec codec) {
    switch (codec) {
    case CodecDecoder::Codec::Aac:
        return 2;
    case CodecDecoder::Codec::Mp1:
    case CodecDecoder::Codec::Mp2:
    case CodecDecoder::Codec::Mp3:
        return 24;
    default:
        return 0;
    }
}
} // namespace

OpenedAudioFile PacketFile::open(AudioSource source, PacketStream stream) {
    if (stream.ticksPerSecond < 1) {
        return refuse("a file with a clock that stands still");
    }
    std::string error;
    auto decoder = CodecDecoder::open(stream.codec, stream.extradata, stream.sampleRate,
                                      stream.channels, error);
    if (!decoder) {
        return refuse(std::move(error));
    }
    std::unique_ptr<PacketFile> file(
        new PacketFile(std::move(source), std::move(stream), std::move(decoder)));
    if (!file->findFormat()) {
        return refuse("sound that the decoder cannot make out");
    }
    file->findLength();
    return {std::move(file), {}};
}

PacketFile::PacketFile(AudioSource source, PacketStream stream,
                       std::unique_ptr<CodecDecoder> decoder)
    : source_(std::move(source))
    , stream_(std::move(stream))
    , decoder_(std::move(decoder)) {
    format_ = {stream_.sampleRate, decoder_->layout()};
}

// The first sound tells the rate and the channels: containers know only those of the core of an
// AAC stream, and often call everything stereo.
bool PacketFile::findFormat() {
    constexpr std::size_t kTries = 16;
    const std::size_t tries = std::min(kTries, stream_.packets.size());
    bool found = tries == 0;
    for (std::size_t i = 0; i < tries && !found; ++i) {
        block_.clear();
        found = readPacket(stream_.packets.at(i)) && decoder_->decode(packet_, block_) &&
                !block_.empty();
    }
    const std::size_t frames = block_.size() / static_cast<std::size_t>(decoder_->channels());
    block_.clear();
    if (found) {
        format_ = {decoder_->sampleRate(), decoder_->layout()};
        countFrames(frames);
    }
    decoder_->reset();
    return found && format_.sampleRate >= kMinSampleRate && format_.sampleRate <= kMaxSampleRate &&
           format_.channels() >= 1 && format_.channels() <= rt::kMaxChannels;
}

// A clock that does not count frames (or, of spectral band replication, pairs of them) would tear
// tiny gaps between packets. All packets of a codec last equally long, so that one can do without.
void PacketFile::countFrames(std::size_t framesOfPacket) {
    const int64_t ticks = stream_.ticksPerSecond;
    if (ticks == format_.sampleRate || 2 * ticks == format_.sampleRate) {
        return;
    }
    stream_.origin = frameAt(std::clamp<int64_t>(stream_.origin, 0, stream_.packets.end()));
    stream_.length = frameAt(std::clamp<int64_t>(stream_.length, 0, stream_.packets.end()));
    stream_.packets.retime(static_cast<uint32_t>(framesOfPacket));
    stream_.ticksPerSecond = format_.sampleRate;
}

void PacketFile::findLength() {
    const int64_t end = stream_.packets.end();
    stream_.origin = std::clamp<int64_t>(stream_.origin, 0, end);
    stream_.length = std::clamp<int64_t>(stream_.length, 0, end - stream_.origin);
    soundEnd_ = frameAt(end);
    // Some writers count a last, shorter packet of lossless sound as a whole one.
    const bool lossless = stream_.codec == CodecDecoder::Codec::Alac;
    if (lossless && stream_.packets.size() > 0) {
        const Packet last = stream_.packets.at(stream_.packets.size() - 1);
        if (readPacket(last) && decoder_->decode(packet_, block_) &&
            decoder_->channels() == channels()) {
            soundEnd_ = std::min(soundEnd_, frameAt(last.start) + blockFrames());
        }
        block_.clear();
        decoder_->reset();
    }
    origin_ = std::min(frameAt(stream_.origin), soundEnd_);
    length_ = std::min(frameAt(stream_.origin + stream_.length), soundEnd_) - origin_;
}

int64_t PacketFile::frameAt(int64_t ticks) const {
    if (stream_.ticksPerSecond == format_.sampleRate) {
        return ticks;
    }
    const int64_t seconds = ticks / stream_.ticksPerSecond;
    const int64_t rest = ticks % stream_.ticksPerSecond;
    return seconds * format_.sampleRate +
           (rest * format_.sampleRate + stream_.ticksPerSecond / 2) / stream_.ticksPerSecond;
}

int64_t PacketFile::blockFrames() const {
    return static_cast<int64_t>(block_.size()) / channels();
}

double PacketFile::dataRate() const {
    const auto bytes = static_cast<double>(stream_.packets.bytes());
    return soundEnd_ > 0 ? 8 * bytes * sampleRate() / static_cast<double>(soundEnd_) : 0;
}

// Decoding on is as good as starting anew where the packets before the position come next anyway.
bool PacketFile::goToPosition() {
    const int64_t target = position_ + origin_;
    std::size_t index = stream_.packets.indexAt(
        static_cast<int64_t>(static_cast<double>(target) *
                             static_cast<double>(stream_.ticksPerSecond) / format_.sampleRate));
    while (index > 0 && frameAt(stream_.packets.at(index).start) > target) {
        --index;
    }
    const std::size_t preRoll = preRollOf(stream_.codec);
    const std::size_t first = index > preRoll ? index - preRoll : 0;
    if (next_ >= first && next_ <= index && target >= blockEnd_ && blockEnd_ > 0) {
        return true;
    }
    decoder_->reset();
    next_ = first;
    while (next_ < index) {
        if (cancelled() || !decodeNext()) {
            dropBlock(); // half way there its sound is not right yet
            return false;
        }
    }
    dropBlock();
    return true;
}

void PacketFile::dropBlock() {
    block_.clear();
    blockStart_ = 0;
    blockEnd_ = 0;
}

// Hands out what the block has for the current position: its frames, then silence up to its end.
// Nothing when it lies before the position.
int64_t PacketFile::deliver(float* out, int64_t frames) {
    const int64_t target = position_ + origin_;
    const int64_t silentBefore = std::clamp<int64_t>(blockStart_ - target, 0, frames);
    std::fill_n(out, silentBefore * channels(), 0.0F);
    const int64_t skipped = target + silentBefore - blockStart_;
    const int64_t sounding = std::clamp<int64_t>(blockFrames() - skipped, 0, frames - silentBefore);
    if (sounding > 0) {
        std::copy_n(block_.begin() + skipped * channels(), sounding * channels(),
                    out + silentBefore * channels());
    }
    const int64_t done = silentBefore + sounding;
    const int64_t silentAfter = std::clamp<int64_t>(blockEnd_ - (target + done), 0, frames - done);
    std::fill_n(out + done * channels(), silentAfter * channels(), 0.0F);
    position_ += done + silentAfter;
    return done + silentAfter;
}

bool PacketFile::decodeNext() {
    if (next_ >= stream_.packets.size()) {
        return false;
    }
    const Packet packet = stream_.packets.at(next_);
    const bool sane = packet.bytes > 0 && packet.bytes <= kMaxPacketBytes;
    if (sane ? !readPacket(packet) : packet.offset + packet.bytes > source_.file.size()) {
        return false; // the file breaks off here
    }
    block_.clear();
    const bool decoded = sane && decoder_->decode(packet_, block_);
    const bool belongs =
        decoder_->sampleRate() == sampleRate() && decoder_->channels() == channels();
    if (!decoded || !belongs) {
        block_.clear();
    }
    ++next_;
    blockStart_ = frameAt(packet.start);
    blockEnd_ = frameAt(packet.end);
    const auto kept = static_cast<std::size_t>((blockEnd_ - blockStart_) * channels());
    block_.resize(std::min(block_.size(), kept));
    return true;
}

bool PacketFile::readPacket(const Packet& packet) {
    if (packet.bytes == 0 || packet.bytes > kMaxPacketBytes) {
        return false;
    }
    packet_.resize(packet.bytes);
    return source_.file.readAt(packet.offset, packet_) == packet_.size();
}

} // namespace quorel
