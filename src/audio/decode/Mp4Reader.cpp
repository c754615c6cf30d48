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

} // namespace

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
