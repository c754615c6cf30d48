#include "audio/decode/CafReader.h"

#include "audio/decode/ChannelMask.h"
#include "audio/decode/Chunks.h"
#include "audio/decode/ElementaryStream.h"
#include "audio/decode/FileCursor.h"
#include "audio/decode/Mp4Boxes.h"
#include "audio/decode/PacketFile.h"
#include "audio/decode/PcmFile.h"

#include <bit>
#include <cmath>
#include <optional>
#include <utility>

namespace quorel {

namespace {

constexpr int64_t kMaxCookieBytes = 65536;

struct Description {
    double sampleRate = 0;
    uint32_t format = 0;
    uint32_t flags = 0;
    uint32_t packetBytes = 0;  // 0: the packet table says
    uint32_t packetFrames = 0; // 0: the packet table says
    int channels = 0;
};

struct Part { // of the file
    int64_t begin = 0;
    int64_t end = 0;
};

struct Chunks {
    std::optional<Description> description;
    std::optional<Part> data;
    std::optional<Part> table;
    std::vector<std::byte> cookie;
    uint32_t channelMask = 0;
};

Description readDescription(FileCursor cursor) {
    Description description;
    description.sampleRate = std::bit_cast<double>(cursor.number(8));
    description.format = static_cast<uint32_t>(cursor.number(4));
    description.flags = static_cast<uint32_t>(cursor.number(4));
    description.packetBytes = static_cast<uint32_t>(cursor.number(4));
    description.packetFrames = static_cast<uint32_t>(cursor.number(4));
    description.channels = static_cast<int>(cursor.number(4));
    return description;
}

// A layout may be named by a tag, by the bits of WAVE_FORMAT_EXTENSIBLE, or speaker by speaker.
uint32_t readChannelMask(FileCursor cursor) {
    constexpr uint64_t kTagBitmap = 0x10000;
    const bool bitmap = cursor.number(4) == kTagBitmap;
    const auto mask = static_cast<uint32_t>(cursor.number(4));
    return bitmap ? mask & 0x3FFFF : 0;
}

Chunks readChunks(const AudioSource& source) {
    const InputFile& file = source.file;
    Chunks chunks;
    int64_t offset = source.begin + 8;
    for (int i = 0; i < kMaxChunks; ++i) {
        FileCursor cursor(file, offset, file.size());
        if (!cursor.has(12)) {
            break;
        }
        const uint64_t name = cursor.number(4);
        const auto stated = static_cast<int64_t>(cursor.number(8));
        const int64_t begin = offset + 12;
        const int64_t room = file.size() - begin;
        const Part part{begin, begin + (stated < 0 || stated > room ? room : stated)};
        if (name == fourCc("desc")) {
            chunks.description = readDescription({file, part.begin, part.end});
        } else if (name == fourCc("data")) {
            chunks.data = Part{std::min(part.begin + 4, part.end), part.end}; // behind a counter
        } else if (name == fourCc("pakt")) {
            chunks.table = part;
        } else if (name == fourCc("chan")) {
            chunks.channelMask = readChannelMask({file, part.begin, part.end});
        } else if (name == fourCc("kuki") && part.end - part.begin <= kMaxCookieBytes) {
            chunks.cookie.resize(static_cast<std::size_t>(part.end - part.begin));
            chunks.cookie.resize(file.readAt(part.begin, chunks.cookie));
        }
        offset = part.end;
    }
    return chunks;
}

OpenedAudioFile openPcm(AudioSource source, const Chunks& chunks) {
    constexpr uint32_t kFloat = 1;
    constexpr uint32_t kLittleEndian = 2;
    const Description& description = *chunks.description;
    const auto channels = static_cast<uint32_t>(description.channels);
    const bool whole = description.packetFrames == 1 && description.packetBytes % channels == 0 &&
                       description.packetBytes <= 64;
    std::optional<PcmSample> sample;
    if (!whole) {
        return refuse("a CAF file with samples that are no whole bytes");
    }
    const auto sampleBytes = static_cast<int>(description.packetBytes / channels);
    if (description.format == fourCc("lpcm")) {
        sample = pcmSample((description.flags & kFloat) != 0, sampleBytes);
    } else if (sampleBytes == 1) {
        sample = description.format == fourCc("ulaw") ? PcmSample::MuLaw : PcmSample::ALaw;
    }
    if (!sample) {
        return refuse("a CAF file with samples of " + std::to_string(8 * sampleBytes) + " bits");
    }
    const rt::Format format{static_cast<int>(std::lround(description.sampleRate)),
                            layoutOfMask(description.channels, chunks.channelMask)};
    const bool little = (description.flags & kLittleEndian) != 0;
    const PcmData data{chunks.data->begin, chunks.data->end - chunks.data->begin,
                       static_cast<int>(description.packetBytes), *sample,
                       little ? std::endian::little : std::endian::big};
    return {std::make_unique<PcmFile>(std::move(source.file), format, data), {}};
}

// A number in bytes of seven bits, of which all but the last have their top bit set.
uint64_t readVariable(FileCursor& cursor) {
    uint64_t value = 0;
    for (int i = 0; i < 5; ++i) {
        const uint64_t byte = cursor.number(1);
        value = value << 7 | (byte & 0x7F);
        if ((byte & 0x80) == 0) {
            break;
        }
    }
    return value;
}

void readPackets(const InputFile& file, const Chunks& chunks, PacketStream& stream) {
    const Description& description = *chunks.description;
    FileCursor table(file, chunks.table->begin, chunks.table->end);
    const uint64_t count = table.number(8);
    const auto validFrames = static_cast<int64_t>(table.number(8));
    stream.origin = static_cast<int32_t>(table.number(4));
    table.skip(4);
    stream.packets.reserve(std::min(count, static_cast<uint64_t>(table.remaining())));
    int64_t offset = chunks.data->begin;
    for (uint64_t i = 0; i < count && table.has(1); ++i) {
        const uint64_t bytes =
            description.packetBytes != 0 ? description.packetBytes : readVariable(table);
        const uint64_t frames =
            description.packetFrames != 0 ? description.packetFrames : readVariable(table);
        if (bytes > UINT32_MAX || frames > UINT32_MAX ||
            !stream.packets.add(offset, static_cast<uint32_t>(bytes),
                                static_cast<uint32_t>(frames))) {
            break;
        }
        offset += static_cast<int64_t>(bytes);
    }
    stream.length = validFrames > 0 ? validFrames : stream.packets.end();
}

// ALAC's cookie is its configuration alone or in boxes behind a "frma" box; AAC's is an
// ES_Descriptor or, of some writers, its configuration alone.
std::vector<std::byte> extradataOf(CodecDecoder::Codec codec, std::span<const std::byte> cookie) {
    if (codec == CodecDecoder::Codec::Alac) {
        const bool boxed = cookie.size() >= 24 && startsWith(cookie.subspan(4), "frma");
        return alacExtradata(boxed ? cookie.subspan(24) : cookie);
    }
    if (!cookie.empty() && cookie[0] == std::byte{0x03}) {
        return readElementaryStream(cookie).config;
    }
    return {cookie.begin(), cookie.end()};
}

OpenedAudioFile openPackets(AudioSource source, const Chunks& chunks, CodecDecoder::Codec codec) {
    if (!chunks.table) {
        return refuse("a CAF file without its table of packets");
    }
    PacketStream stream(source.file);
    stream.codec = codec;
    stream.extradata = extradataOf(codec, chunks.cookie);
    if (stream.extradata.empty()) {
        return refuse("a CAF file without what its decoder needs");
    }
    stream.sampleRate = static_cast<int>(std::lround(chunks.description->sampleRate));
    stream.channels = chunks.description->channels;
    stream.ticksPerSecond = stream.sampleRate;
    readPackets(source.file, chunks, stream);
    return PacketFile::open(std::move(source), std::move(stream));
}

} // namespace

bool recognisesCaf(std::span<const std::byte> head) {
    return startsWith(head, "caff");
}

OpenedAudioFile openCaf(AudioSource source) {
    const Chunks chunks = readChunks(source);
    if (!chunks.description) {
        return refuse("a CAF file without a description of its format");
    }
    const Description& description = *chunks.description;
    if (description.channels < 1 || description.channels > rt::kMaxChannels) {
        return refuse("a CAF file with " + std::to_string(description.channels) + " channels");
    }
    if (!(description.sampleRate >= kMinSampleRate && description.sampleRate <= kMaxSampleRate)) {
        return refuse("a CAF file with an absurd sampling rate");
    }
    if (!chunks.data) {
        return refuse("a CAF file without sound");
    }
    switch (description.format) {
    case fourCc("lpcm"):
    case fourCc("ulaw"):
    case fourCc("alaw"):
        return openPcm(std::move(source), chunks);
    case fourCc("alac"):
        return openPackets(std::move(source), chunks, CodecDecoder::Codec::Alac);
    case fourCc("aac "):
        return openPackets(std::move(source), chunks, CodecDecoder::Codec::Aac);
    default:
        return refuse("a CAF file with a kind of sound that is not supported");
    }
}

} // namespace quorel
