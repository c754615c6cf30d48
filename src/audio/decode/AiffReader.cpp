#include "audio/decode/AiffReader.h"

#include "audio/decode/Chunks.h"
#include "audio/decode/FileCursor.h"
#include "audio/decode/Mp4Boxes.h"
#include "audio/decode/PcmFile.h"

#include <cmath>
#include <optional>
#include <utility>

namespace quorel {

namespace {

struct CommonChunk {
    int channels = 0;
    uint64_t frames = 0;
    int bits = 0;
    double sampleRate = 0;
    uint32_t compression = fourCc("NONE");
};

struct Chunks {
    std::optional<CommonChunk> common;
    std::optional<SoundChunk> sound;
};

// An 80-bit IEEE 754 number: sign, 15 bits of exponent, 64 of mantissa with its leading one.
double readExtended(FileCursor& cursor) {
    const auto exponent = static_cast<int>(cursor.number(2));
    const auto mantissa = static_cast<double>(cursor.number(8));
    const bool negative = (exponent & 0x8000) != 0;
    return negative ? 0 : std::ldexp(mantissa, exponent - 16383 - 63);
}

CommonChunk readCommon(FileCursor cursor) {
    CommonChunk common;
    common.channels = static_cast<int>(cursor.number(2));
    common.frames = cursor.number(4);
    common.bits = static_cast<int>(cursor.number(2));
    common.sampleRate = readExtended(cursor);
    if (cursor.has(4)) {
        common.compression = static_cast<uint32_t>(cursor.number(4));
    }
    return common;
}

Chunks readChunks(const AudioSource& source) {
    Chunks chunks;
    int64_t offset = source.begin + 12;
    for (int i = 0; i < kMaxChunks && !(chunks.common && chunks.sound); ++i) {
        FileCursor cursor(source.file, offset, source.end);
        if (!cursor.has(8)) {
            break;
        }
        const uint64_t name = cursor.number(4);
        const auto bytes = static_cast<int64_t>(cursor.number(4));
        const int64_t begin = offset + 8;
        if (name == fourCc("COMM")) {
            chunks.common = readCommon({source.file, begin, begin + bytes});
        } else if (name == fourCc("SSND") && cursor.has(8)) {
            const auto skipped = static_cast<int64_t>(cursor.number(4));
            // A program that writes into a pipe cannot go back to fill in the size.
            const bool unknown = bytes < 8;
            chunks.sound =
                SoundChunk{begin + 8 + skipped,
                           unknown ? source.end - begin - 8 - skipped : bytes - 8 - skipped};
        }
        offset = begin + bytes + (bytes & 1);
    }
    return chunks;
}

struct Samples {
    PcmSample kind;
    std::endian order;
};

std::optional<Samples> samplesOf(const CommonChunk& common) {
    using enum std::endian;
    const auto stored = [](std::optional<PcmSample> kind, std::endian order) {
        return kind ? std::optional(Samples{*kind, order}) : std::nullopt;
    };
    switch (common.compression) {
    case fourCc("NONE"):
    case fourCc("twos"):
        return stored(pcmSample(false, (common.bits + 7) / 8), big);
    case fourCc("sowt"):
        return stored(pcmSample(false, (common.bits + 7) / 8), little);
    case fourCc("raw "):
        return Samples{PcmSample::U8, big};
    case fourCc("in24"):
        return Samples{PcmSample::S24, big};
    case fourCc("in32"):
        return Samples{PcmSample::S32, big};
    case fourCc("fl32"):
    case fourCc("FL32"):
        return Samples{PcmSample::F32, big};
    case fourCc("fl64"):
    case fourCc("FL64"):
        return Samples{PcmSample::F64, big};
    case fourCc("ulaw"):
    case fourCc("ULAW"):
        return Samples{PcmSample::MuLaw, big};
    case fourCc("alaw"):
    case fourCc("ALAW"):
        return Samples{PcmSample::ALaw, big};
    default:
        return std::nullopt;
    }
}

} // namespace

bool recognisesAiff(std::span<const std::byte> head) {
    return startsWith(head, "FORM") && head.size() >= 12 &&
           (startsWith(head.subspan(8), "AIFF") || startsWith(head.subspan(8), "AIFC"));
}

OpenedAudioFile openAiff(AudioSource source) {
    const Chunks chunks = readChunks(source);
    if (!chunks.common) {
        return refuse("an AIFF file without a description of its format");
    }
    const CommonChunk& common = *chunks.common;
    if (common.channels < 1 || common.channels > rt::kMaxChannels) {
        return refuse("an AIFF file with " + std::to_string(common.channels) + " channels");
    }
    if (!(common.sampleRate >= kMinSampleRate && common.sampleRate <= kMaxSampleRate)) {
        return refuse("an AIFF file with an absurd sampling rate");
    }
    const std::optional<Samples> samples = samplesOf(common);
    if (!samples) {
        return refuse("an AIFF file with compressed sound, which is not supported");
    }
    if (!chunks.sound && common.frames > 0) {
        return refuse("an AIFF file without sound");
    }
    const SoundChunk sound = chunks.sound.value_or(SoundChunk{source.end, 0});
    PcmData data;
    data.offset = sound.offset;
    data.frameBytes = common.channels * bytesOf(samples->kind);
    const auto stated = static_cast<int64_t>(common.frames) * data.frameBytes;
    const int64_t present = std::min(sound.bytes, source.end - sound.offset);
    data.bytes = common.frames > 0 ? std::min(present, stated) : present;
    data.sample = samples->kind;
    data.order = samples->order;
    const rt::Format format{static_cast<int>(std::lround(common.sampleRate)),
                            rt::ChannelLayout::usual(common.channels)};
    return {std::make_unique<PcmFile>(std::move(source.file), format, data), {}};
}

} // namespace quorel
