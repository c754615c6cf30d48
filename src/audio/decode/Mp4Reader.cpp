#include "audio/decode/Mp4Reader.h"

#include "audio/decode/Bytes.h"
#include "audio/decode/Mp4Packets.h"
#include "audio/decode/PacketFile.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <utility>

namespace quorel {

namespace {

constexpr int kMaxBoxesBeforeMovie = 10'000; // more is damage

struct Trim {
    int64_t origin = 0;
    int64_t length = 0;
};

// iTunSMPB is a row of hexadecimal numbers: always 0, the delay, the padding, the true length.
std::optional<Trim> gaplessTrim(const std::string& text) {
    const char* at = text.c_str();
    std::array<unsigned long long, 4> numbers{};
    for (unsigned long long& number : numbers) {
        char* end = nullptr;
        number = std::strtoull(at, &end, 16);
        if (end == at) {
            return std::nullopt;
        }
        at = end;
    }
    constexpr unsigned long long kMax = 1ULL << 41;
    if (numbers[1] > kMax || numbers[3] > kMax || numbers[3] == 0) {
        return std::nullopt;
    }
    return Trim{static_cast<int64_t>(numbers[1]), static_cast<int64_t>(numbers[3])};
}

// An edit list states durations in the movie's clock, which is mostly too coarse to trust: the
// media's own length counts, unless the edit clearly cuts something off.
Trim trimOf(const Mp4Movie& movie, int64_t total) {
    const Mp4Track& track = *movie.track;
    if (const auto trim = gaplessTrim(movie.gapless);
        trim && trim->origin + trim->length <= total) {
        return *trim;
    }
    const int64_t duration = track.duration > 0 ? std::min(track.duration, total) : total;
    Trim trim{std::clamp<int64_t>(track.editStart.value_or(0), 0, duration), 0};
    trim.length = duration - trim.origin;
    if (track.editDuration > 0 && movie.ticksPerSecond > 0) {
        const int64_t tick =
            (track.ticksPerSecond + movie.ticksPerSecond - 1) / movie.ticksPerSecond;
        const double edited =
            static_cast<double>(track.editDuration) * track.ticksPerSecond / movie.ticksPerSecond;
        if (edited + static_cast<double>(tick) < static_cast<double>(trim.length)) {
            trim.length = std::llround(edited);
        }
    }
    return trim;
}

std::string codecName(uint32_t entry) {
    static constexpr struct {
        uint32_t entry;
        const char* name;
    } kNames[] = {{fourCc("ac-3"), "AC-3"},
                  {fourCc("ec-3"), "E-AC-3"},
                  {fourCc("Opus"), "Opus"},
                  {fourCc("fLaC"), "FLAC"},
                  {fourCc("mp4a"), "MPEG-4"}};
    for (const auto& known : kNames) {
        if (known.entry == entry) {
            return known.name;
        }
    }
    std::string name;
    for (int shift = 24; shift >= 0; shift -= 8) {
        const auto character = static_cast<char>(entry >> shift & 0xFF);
        name += character >= ' ' && character <= '~' ? character : '?';
    }
    return name;
}

std::string refusal(const Mp4Movie& movie) {
    if (!movie.track) {
        return "an MP4 file without sound";
    }
    const Mp4Track& track = *movie.track;
    if (track.sampleEntry == fourCc("enca") || track.sampleEntry == fourCc("drms")) {
        return "an MP4 file with protected sound";
    }
    if (!track.codec) {
        return "an MP4 file with a kind of sound that is not supported (" +
               codecName(track.sampleEntry) + ")";
    }
    if (track.ticksPerSecond == 0) {
        return "an MP4 file with a clock that stands still";
    }
    return {};
}

struct Contents {
    std::optional<Mp4Movie> movie;
    PacketTable packets{0};
};

Contents readContents(const AudioSource& source) {
    Contents contents;
    int budget = kMaxMp4Boxes;
    Mp4Walk walk(source.file, source.begin, source.file.size(), budget);
    int64_t offset = source.begin;
    while (const auto box = walk.next()) {
        if (!contents.movie && budget < kMaxMp4Boxes - kMaxBoxesBeforeMovie) {
            break;
        }
        if (box->name == fourCc("moov") && !contents.movie) {
            contents.movie = readMp4Movie(source.file, *box, budget);
            if (!refusal(*contents.movie).empty()) {
                break;
            }
            contents.packets = readMp4Packets(source.file, *contents.movie->track);
            if (!contents.movie->fragmented) {
                break;
            }
        } else if (box->name == fourCc("moof") && contents.movie) {
            readMp4Fragment(source.file, *box, offset, *contents.movie, contents.packets, budget);
        }
        offset = box->end;
    }
    return contents;
}

// The sampling rate that an AudioSpecificConfig (ISO/IEC 14496-3, 1.6.2.1) states of plain AAC LC.
// 0 for all other AAC, and for rates at which encoders extend the band without saying so.
int plainAacRate(std::span<const std::byte> config) {
    static constexpr std::array kRates{96000, 88200, 64000, 48000, 44100, 32000};
    constexpr uint64_t kLowComplexity = 2;
    if (config.size() < 2) {
        return 0;
    }
    const uint64_t head = loadUnsigned(config.data(), 2, std::endian::big);
    const auto rate = static_cast<std::size_t>(head >> 7 & 0xF);
    const bool knownChannels = (head >> 3 & 0xF) != 0;
    // Behind these two bytes an encoder may say that it extends nothing: 11 bits of mark, 5 of
    // object type, then a 0.
    const bool saysNoExtension = config.size() >= 5 && config[2] == std::byte{0x56} &&
                                 config[3] == std::byte{0xE5} &&
                                 (config[4] & std::byte{0x80}) == std::byte{};
    const bool plain =
        head >> 11 == kLowComplexity && knownChannels && (config.size() == 2 || saysNoExtension);
    return plain && rate < kRates.size() ? kRates[rate] : 0;
}

// Whether decoding could tell nothing about rate and length that the tables do not.
bool isToldByTables(const Mp4Track& track, const Mp4PacketSums& sums) {
    const auto ticks = static_cast<int64_t>(track.ticksPerSecond);
    if (*track.codec == CodecDecoder::Codec::Alac) {
        // A last packet as long as the others may be one whose true length was not written.
        return ticks == track.sampleRate && sums.lastTicks < sums.firstTicks;
    }
    return *track.codec == CodecDecoder::Codec::Aac && ticks == plainAacRate(track.extradata);
}

std::optional<Mp4Movie> findMovie(const AudioSource& source) {
    int budget = kMaxMp4Boxes;
    Mp4Walk walk(source.file, source.begin, source.file.size(), budget);
    for (int i = 0; i < kMaxBoxesBeforeMovie; ++i) {
        const auto box = walk.next();
        if (!box) {
            break;
        }
        if (box->name == fourCc("moov")) {
            return readMp4Movie(source.file, *box, budget);
        }
    }
    return std::nullopt;
}

} // namespace

std::optional<AudioProperties> measureMp4(const AudioSource& source) {
    const std::optional<Mp4Movie> movie = findMovie(source);
    if (!movie || movie->fragmented || !refusal(*movie).empty()) {
        return std::nullopt;
    }
    const auto sums = sumMp4Packets(source.file, *movie->track);
    if (!sums || sums->ticks == 0 || !isToldByTables(*movie->track, *sums)) {
        return std::nullopt;
    }
    const Trim trim = trimOf(*movie, sums->ticks);
    const auto rate = static_cast<int>(movie->track->ticksPerSecond);
    return AudioProperties{rate, std::clamp<int64_t>(trim.length, 0, sums->ticks - trim.origin),
                           dataRateOf(sums->bytes, sums->ticks, rate)};
}

bool recognisesMp4(std::span<const std::byte> head) {
    if (head.size() < 8) {
        return false;
    }
    const std::span<const std::byte> name = head.subspan(4);
    return startsWith(name, "ftyp") || startsWith(name, "moov") || startsWith(name, "mdat") ||
           startsWith(name, "free") || startsWith(name, "skip") || startsWith(name, "wide");
}

OpenedAudioFile openMp4(AudioSource source) {
    Contents contents = readContents(source);
    if (!contents.movie) {
        return refuse("an MP4 file without its table of contents");
    }
    if (std::string reason = refusal(*contents.movie); !reason.empty()) {
        return refuse(std::move(reason));
    }
    Mp4Track& track = *contents.movie->track;
    const Trim trim = trimOf(*contents.movie, contents.packets.end());
    PacketStream stream(source.file);
    stream.codec = *track.codec;
    stream.extradata = std::move(track.extradata);
    // An entry has no room for high rates; the media's clock mostly counts frames.
    stream.sampleRate =
        track.sampleRate > 0
            ? track.sampleRate
            : static_cast<int>(std::min<uint32_t>(track.ticksPerSecond, kMaxSampleRate));
    stream.channels = std::clamp(track.channels, 1, rt::kMaxChannels);
    stream.ticksPerSecond = track.ticksPerSecond;
    stream.packets = std::move(contents.packets);
    stream.origin = trim.origin;
    stream.length = trim.length;
    return PacketFile::open(std::move(source), std::move(stream));
}

} // namespace quorel
