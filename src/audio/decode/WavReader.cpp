#include "audio/decode/WavReader.h"

#include "audio/decode/Bytes.h"
#include "audio/decode/ChannelMask.h"
#include "audio/decode/Chunks.h"
#include "audio/decode/MpegFile.h"
#include "audio/decode/PacketFile.h"
#include "audio/decode/PcmFile.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace quorel {

namespace {

constexpr uint32_t kUnknownSize = 0xFFFFFFFF;
constexpr uint32_t kTagPcm = 0x0001;
constexpr uint32_t kTagAdpcmMs = 0x0002;
constexpr uint32_t kTagFloat = 0x0003;
constexpr uint32_t kTagALaw = 0x0006;
constexpr uint32_t kTagMuLaw = 0x0007;
constexpr uint32_t kTagAdpcmIma = 0x0011;
constexpr uint32_t kTagMpegLayer12 = 0x0050;
constexpr uint32_t kTagMpegLayer3 = 0x0055;
constexpr uint32_t kTagExtensible = 0xFFFE;

struct FormatChunk {
    uint32_t tag = 0; // the subformat's where there is one
    int channels = 0;
    uint32_t sampleRate = 0;
    int frameBytes = 0;
    int bits = 0;
    uint32_t channelMask = 0;
    uint32_t blockFrames = 0; // of ADPCM, whose frameBytes are those of a block
};

struct Chunks {
    std::optional<FormatChunk> format;
    std::optional<SoundChunk> data;
    uint32_t frames = 0; // stated of compressed sound
};

class Walker {
  public:
    explicit Walker(const AudioSource& source)
        : source_(source) {}

    Chunks walk();
    std::endian order() const { return order_; }

  private:
    uint32_t number(const std::byte* at, int bytes) const {
        return static_cast<uint32_t>(loadUnsigned(at, bytes, order_));
    }
    std::optional<FormatChunk> readFormat(int64_t offset, int64_t bytes) const;
    int64_t dataBytes(int64_t offset, uint32_t stated) const;

    const AudioSource& source_;
    std::endian order_ = std::endian::little;
    uint32_t riffBytes_ = 0;
    int64_t longDataBytes_ = INT64_MAX; // RF64's data size, which has no room in the chunk itself
};

Chunks Walker::walk() {
    std::array<std::byte, 16> header{};
    source_.file.readAt(source_.begin, header);
    order_ = startsWith(header, "RIFX") ? std::endian::big : std::endian::little;
    riffBytes_ = number(header.data() + 4, 4);

    Chunks chunks;
    int64_t offset = source_.begin + 12;
    for (int i = 0; i < kMaxChunks && !(chunks.format && chunks.data); ++i) {
        const std::size_t got = source_.file.readAt(offset, header);
        if (got < 8) {
            break;
        }
        const uint32_t stated = number(header.data() + 4, 4);
        int64_t bytes = stated;
        offset += 8;
        if (startsWith(header, "fmt ")) {
            chunks.format = readFormat(offset, bytes);
        } else if (startsWith(header, "fact") && got >= 12) {
            chunks.frames = number(header.data() + 8, 4);
        } else if (startsWith(header, "ds64")) {
            std::array<std::byte, 16> sizes{};
            if (source_.file.readAt(offset, sizes) == sizes.size()) {
                const uint64_t size = loadUnsigned(sizes.data() + 8, 8, order_);
                longDataBytes_ = static_cast<int64_t>(std::min<uint64_t>(size, INT64_MAX / 2));
            }
        } else if (startsWith(header, "data")) {
            bytes = dataBytes(offset, stated);
            chunks.data = SoundChunk{offset, bytes};
        }
        offset += bytes + (bytes & 1);
    }
    return chunks;
}

// A program that writes into a pipe cannot go back to fill in the sizes: 0 or all ones then, and
// everything that follows is sound. Only a finished file (its outer size is right) may mean 0.
int64_t Walker::dataBytes(int64_t offset, uint32_t stated) const {
    const int64_t present = std::max<int64_t>(0, source_.end - offset);
    if (stated == kUnknownSize) {
        return std::min(longDataBytes_, present);
    }
    const bool finished = source_.begin + 8 + riffBytes_ == source_.file.size();
    return stated == 0 && !finished ? present : std::min<int64_t>(stated, present);
}

std::optional<FormatChunk> Walker::readFormat(int64_t offset, int64_t bytes) const {
    std::array<std::byte, 40> chunk{};
    const auto wanted = static_cast<std::size_t>(std::min<int64_t>(bytes, chunk.size()));
    const std::size_t got = source_.file.readAt(offset, std::span(chunk).first(wanted));
    if (got < 16) {
        return std::nullopt;
    }
    FormatChunk format;
    format.tag = number(chunk.data(), 2);
    format.channels = static_cast<int>(number(chunk.data() + 2, 2));
    format.sampleRate = number(chunk.data() + 4, 4);
    format.frameBytes = static_cast<int>(number(chunk.data() + 12, 2));
    format.bits = static_cast<int>(number(chunk.data() + 14, 2));
    format.blockFrames = got >= 20 ? number(chunk.data() + 18, 2) : 0;
    if (format.tag == kTagExtensible && got == chunk.size()) {
        format.channelMask = number(chunk.data() + 20, 4);
        format.tag = number(chunk.data() + 24, 2); // the subformat's GUID starts with its old tag
    }
    return format;
}

std::optional<PcmSample> sampleOf(const FormatChunk& format, int bytes) {
    if (format.tag == kTagFloat) {
        return bytes == 4   ? std::optional(PcmSample::F32)
               : bytes == 8 ? std::optional(PcmSample::F64)
                            : std::nullopt;
    }
    if (format.tag == kTagALaw || format.tag == kTagMuLaw) {
        const auto code = format.tag == kTagALaw ? PcmSample::ALaw : PcmSample::MuLaw;
        return bytes == 1 ? std::optional(code) : std::nullopt;
    }
    static constexpr std::array kIntegers{PcmSample::U8, PcmSample::S16, PcmSample::S24,
                                          PcmSample::S32};
    if (bytes < 1 || bytes > 4) {
        return std::nullopt;
    }
    return kIntegers[static_cast<std::size_t>(bytes - 1)];
}

std::string refusal(const FormatChunk& format) {
    static constexpr std::array kKnown{kTagPcm,     kTagFloat,    kTagALaw,        kTagMuLaw,
                                       kTagAdpcmMs, kTagAdpcmIma, kTagMpegLayer12, kTagMpegLayer3};
    if (std::find(kKnown.begin(), kKnown.end(), format.tag) == kKnown.end()) {
        return "a WAV file with compressed sound of a kind that is not supported";
    }
    if (format.channels < 1 || format.channels > rt::kMaxChannels) {
        return "a WAV file with " + std::to_string(format.channels) + " channels";
    }
    if (format.sampleRate < kMinSampleRate || format.sampleRate > kMaxSampleRate) {
        return "a WAV file with a sampling rate of " + std::to_string(format.sampleRate) + " Hz";
    }
    return {};
}

// Blocks of one size, each decoded on its own; the last one may be cut short.
OpenedAudioFile openAdpcm(AudioSource source, const Chunks& chunks) {
    const FormatChunk& format = *chunks.format;
    if (format.frameBytes < 4 * format.channels || format.blockFrames == 0) {
        return refuse("a WAV file with ADPCM blocks of an absurd size");
    }
    PacketStream stream(source.file);
    stream.codec =
        format.tag == kTagAdpcmMs ? CodecDecoder::Codec::AdpcmMs : CodecDecoder::Codec::AdpcmIma;
    stream.sampleRate = static_cast<int>(format.sampleRate);
    stream.channels = format.channels;
    stream.ticksPerSecond = format.sampleRate;
    const int64_t blocks = chunks.data->bytes / format.frameBytes;
    stream.packets.reserve(static_cast<uint64_t>(blocks));
    const auto blockBytes = static_cast<uint32_t>(format.frameBytes);
    for (int64_t i = 0; i < blocks; ++i) {
        if (!stream.packets.add(chunks.data->offset + i * blockBytes, blockBytes,
                                format.blockFrames)) {
            break;
        }
    }
    const int64_t total = stream.packets.end();
    stream.length = chunks.frames > 0 ? std::min<int64_t>(chunks.frames, total) : total;
    return PacketFile::open(std::move(source), std::move(stream));
}

} // namespace

bool recognisesWav(std::span<const std::byte> head) {
    return (startsWith(head, "RIFF") || startsWith(head, "RIFX") || startsWith(head, "RF64") ||
            startsWith(head, "BW64")) &&
           head.size() >= 12 && startsWith(head.subspan(8), "WAVE");
}

OpenedAudioFile openWav(AudioSource source) {
    Walker walker(source);
    const Chunks chunks = walker.walk();
    if (!chunks.format) {
        return refuse("a WAV file without a description of its format");
    }
    const FormatChunk& format = *chunks.format;
    if (std::string reason = refusal(format); !reason.empty()) {
        return refuse(std::move(reason));
    }
    if (!chunks.data) {
        return refuse("a WAV file without sound");
    }
    if (format.tag == kTagMpegLayer12 || format.tag == kTagMpegLayer3) {
        source.begin = chunks.data->offset;
        source.end = chunks.data->offset + chunks.data->bytes;
        return openMpeg(std::move(source));
    }
    if (format.tag == kTagAdpcmMs || format.tag == kTagAdpcmIma) {
        return openAdpcm(std::move(source), chunks);
    }
    // A sample may stand in more bytes than its bits need (12 in 16, 24 in 32), at their upper end.
    const int neededBytes = (format.bits + 7) / 8;
    const bool roomy = format.frameBytes % format.channels == 0 &&
                       format.frameBytes / format.channels >= neededBytes;
    const int sampleBytes = roomy ? format.frameBytes / format.channels : neededBytes;
    const std::optional<PcmSample> sample = sampleOf(format, sampleBytes);
    if (!sample || format.bits == 0) {
        return refuse("a WAV file with samples of " + std::to_string(format.bits) + " bits");
    }
    const rt::Format audio{static_cast<int>(format.sampleRate),
                           layoutOfMask(format.channels, format.channelMask)};
    const PcmData data{chunks.data->offset, chunks.data->bytes, format.channels * sampleBytes,
                       *sample, walker.order()};
    return {std::make_unique<PcmFile>(std::move(source.file), audio, data), {}};
}

} // namespace quorel
