#include "audio/decode/Mp4Movie.h"

#include "audio/decode/ElementaryStream.h"
#include "audio/decode/FileCursor.h"

#include <algorithm>
#include <array>

namespace quorel {

namespace {

constexpr int64_t kMaxConfigBytes = 65536;

std::vector<std::byte> contentOf(const InputFile& file, const Mp4Box& box, int64_t skipped = 0) {
    const int64_t begin = std::min(box.begin + skipped, box.end);
    std::vector<std::byte> bytes(
        static_cast<std::size_t>(std::clamp<int64_t>(box.end - begin, 0, kMaxConfigBytes)));
    bytes.resize(file.readAt(begin, bytes));
    return bytes;
}

/// Reads one moov box, each method one kind of box in it.
class MovieReader {
  public:
    MovieReader(const InputFile& file, int& budget)
        : file_(file)
        , budget_(budget) {}

    Mp4Movie read(const Mp4Box& moov);

  private:
    Mp4Walk in(const Mp4Box& box, int64_t skipped = 0) {
        return {file_, box.begin + skipped, box.end, budget_};
    }
    FileCursor cursor(const Mp4Box& box) const { return {file_, box.begin, box.end}; }

    void readTrack(const Mp4Box& box);
    void readMedia(const Mp4Box& box, Mp4Track& track);
    void readSampleTable(const Mp4Box& box, Mp4Track& track);
    void readEdits(const Mp4Box& box, Mp4Track& track) const;
    void readDescription(const Mp4Box& box, Mp4Track& track);
    void readSampleEntry(const Mp4Box& box, Mp4Track& track);
    void readCodecBoxes(const Mp4Box& box, int64_t skipped, Mp4Track& track);
    void readDefaults(const Mp4Box& box);
    void readMetadata(const Mp4Box& box);
    void readFreeForm(const Mp4Box& box);

    const InputFile& file_;
    int& budget_;
    Mp4Movie movie_;
};

struct Clock {
    uint32_t ticksPerSecond = 0;
    int64_t duration = 0;
};

// mvhd and mdhd start alike.
Clock readClock(FileCursor cursor) {
    const bool wide = cursor.number(1) == 1;
    cursor.skip(wide ? 3 + 16 : 3 + 8);
    Clock clock;
    clock.ticksPerSecond = static_cast<uint32_t>(cursor.number(4));
    const uint64_t duration = cursor.number(wide ? 8 : 4);
    const bool known = duration != (wide ? UINT64_MAX : UINT32_MAX);
    clock.duration = known ? static_cast<int64_t>(std::min<uint64_t>(duration, INT64_MAX / 2)) : 0;
    return clock;
}

Mp4Movie MovieReader::read(const Mp4Box& moov) {
    Mp4Walk walk = in(moov);
    while (const auto box = walk.next()) {
        if (box->name == fourCc("mvhd")) {
            movie_.ticksPerSecond = readClock(cursor(*box)).ticksPerSecond;
        } else if (box->name == fourCc("trak")) {
            readTrack(*box);
        } else if (box->name == fourCc("mvex")) {
            movie_.fragmented = true;
            readDefaults(*box);
        } else if (box->name == fourCc("udta")) {
            readMetadata(*box);
        }
    }
    return std::move(movie_);
}

void MovieReader::readTrack(const Mp4Box& box) {
    Mp4Track track;
    Mp4Walk walk = in(box);
    while (const auto inner = walk.next()) {
        if (inner->name == fourCc("tkhd")) {
            FileCursor head = cursor(*inner);
            const bool wide = head.number(1) == 1;
            head.skip(wide ? 3 + 16 : 3 + 8);
            track.id = static_cast<uint32_t>(head.number(4));
        } else if (inner->name == fourCc("mdia")) {
            readMedia(*inner, track);
        } else if (inner->name == fourCc("edts")) {
            readEdits(*inner, track);
        }
    }
    const bool playable = movie_.track && movie_.track->codec;
    if (track.sound && !playable && (track.codec || !movie_.track)) {
        movie_.track = std::move(track);
    }
}

void MovieReader::readMedia(const Mp4Box& box, Mp4Track& track) {
    Mp4Walk walk = in(box);
    while (const auto inner = walk.next()) {
        if (inner->name == fourCc("mdhd")) {
            const Clock clock = readClock(cursor(*inner));
            track.ticksPerSecond = clock.ticksPerSecond;
            track.duration = clock.duration;
        } else if (inner->name == fourCc("hdlr")) {
            FileCursor handler = cursor(*inner);
            handler.skip(8);
            track.sound = handler.number(4) == fourCc("soun");
        } else if (inner->name == fourCc("minf")) {
            Mp4Walk information = in(*inner);
            while (const auto part = information.next()) {
                if (part->name == fourCc("stbl")) {
                    readSampleTable(*part, track);
                }
            }
        }
    }
}

void MovieReader::readSampleTable(const Mp4Box& box, Mp4Track& track) {
    Mp4Walk walk = in(box);
    while (const auto inner = walk.next()) {
        switch (inner->name) {
        case fourCc("stsd"):
            readDescription(*inner, track);
            break;
        case fourCc("stts"):
            track.times = *inner;
            break;
        case fourCc("stsz"):
            track.sizes = *inner;
            break;
        case fourCc("stsc"):
            track.chunks = *inner;
            break;
        case fourCc("stco"):
        case fourCc("co64"):
            track.offsets = *inner;
            break;
        default:
            break;
        }
    }
}

void MovieReader::readEdits(const Mp4Box& box, Mp4Track& track) const {
    constexpr uint64_t kMaxEdits = 10'000;
    constexpr int64_t kMaxTicks = int64_t{1} << 41;
    int one = 1; // the list stands alone in its box
    const auto list = Mp4Walk(file_, box.begin, box.end, one).next();
    if (!list || list->name != fourCc("elst")) {
        return;
    }
    FileCursor edits = cursor(*list);
    const bool wide = edits.number(1) == 1;
    edits.skip(3);
    const uint64_t count = std::min(edits.number(4), kMaxEdits);
    for (uint64_t i = 0; i < count && edits.has(wide ? 20 : 12); ++i) {
        const uint64_t duration = edits.number(wide ? 8 : 4);
        const int64_t start =
            wide ? static_cast<int64_t>(edits.number(8)) : static_cast<int32_t>(edits.number(4));
        edits.skip(4);
        if (start < 0) {
            continue; // a pause before the sound
        }
        track.editStart = track.editStart.value_or(std::min(start, kMaxTicks));
        track.editDuration += static_cast<int64_t>(std::min<uint64_t>(duration, kMaxTicks));
    }
}

void MovieReader::readDescription(const Mp4Box& box, Mp4Track& track) {
    Mp4Walk walk = in(box, 8);
    if (const auto entry = walk.next()) {
        readSampleEntry(*entry, track);
    }
}

void MovieReader::readSampleEntry(const Mp4Box& box, Mp4Track& track) {
    track.sampleEntry = box.name;
    FileCursor entry = cursor(box);
    entry.skip(8);
    const uint64_t version = entry.number(2);
    entry.skip(6);
    track.channels = static_cast<int>(entry.number(2));
    entry.skip(6);
    track.sampleRate = static_cast<int>(entry.number(4) >> 16);
    if (box.name == fourCc(".mp3")) {
        track.codec = CodecDecoder::Codec::Mp3;
    }
    // QuickTime's longer forms of the entry.
    constexpr std::array<int64_t, 3> kEntryBytes{28, 28 + 16, 28 + 36};
    readCodecBoxes(box, kEntryBytes[std::min<uint64_t>(version, 2)], track);
}

void MovieReader::readCodecBoxes(const Mp4Box& box, int64_t skipped, Mp4Track& track) {
    Mp4Walk walk = in(box, skipped);
    while (const auto inner = walk.next()) {
        if (inner->name == fourCc("wave") && box.name != fourCc("wave")) {
            readCodecBoxes(*inner, 0, track);
        } else if (inner->name == fourCc("alac") && track.sampleEntry == fourCc("alac")) {
            const std::vector<std::byte> config = contentOf(file_, *inner, 4);
            track.extradata = alacExtradata(config);
            if (!track.extradata.empty()) {
                track.codec = CodecDecoder::Codec::Alac;
                track.channels = std::to_integer<int>(config[9]);
            }
        } else if (inner->name == fourCc("esds") && track.sampleEntry == fourCc("mp4a")) {
            ElementaryStream stream = readElementaryStream(contentOf(file_, *inner, 4));
            const int type = stream.objectType;
            if (type == 0x40 || (type >= 0x66 && type <= 0x68)) {
                track.codec = CodecDecoder::Codec::Aac;
                track.extradata = std::move(stream.config);
            } else if (type == 0x69 || type == 0x6B) {
                track.codec = CodecDecoder::Codec::Mp3;
            }
        }
    }
}

void MovieReader::readDefaults(const Mp4Box& box) {
    Mp4Walk walk = in(box);
    while (const auto inner = walk.next()) {
        FileCursor defaults = cursor(*inner);
        defaults.skip(4);
        const bool ours = !movie_.track || defaults.number(4) == movie_.track->id;
        if (inner->name == fourCc("trex") && ours) {
            defaults.skip(4);
            movie_.defaults.ticks = static_cast<uint32_t>(defaults.number(4));
            movie_.defaults.bytes = static_cast<uint32_t>(defaults.number(4));
        }
    }
}

// udta holds meta, meta holds ilst, and that holds items.
void MovieReader::readMetadata(const Mp4Box& box) {
    Mp4Walk walk = in(box);
    while (const auto inner = walk.next()) {
        if (inner->name == fourCc("meta") && box.name == fourCc("udta")) {
            // QuickTime's has no version and flags in front of its boxes.
            FileCursor first = cursor(*inner);
            first.skip(4);
            const bool plain = first.number(4) == fourCc("hdlr");
            readMetadata({inner->name, inner->begin + (plain ? 0 : 4), inner->end});
        } else if (inner->name == fourCc("ilst") && box.name == fourCc("meta")) {
            readMetadata(*inner);
        } else if (inner->name == fourCc("----") && box.name == fourCc("ilst")) {
            readFreeForm(*inner);
        }
    }
}

void MovieReader::readFreeForm(const Mp4Box& box) {
    constexpr std::size_t kMaxText = 256;
    bool ours = false;
    Mp4Walk walk = in(box);
    while (const auto inner = walk.next()) {
        if (inner->name == fourCc("name")) {
            ours = startsWith(contentOf(file_, *inner, 4), "iTunSMPB");
        } else if (inner->name == fourCc("data") && ours) {
            for (const std::byte character : contentOf(file_, *inner, 8)) {
                movie_.gapless += static_cast<char>(character);
                if (movie_.gapless.size() == kMaxText) {
                    break;
                }
            }
        }
    }
}

} // namespace

Mp4Movie readMp4Movie(const InputFile& file, const Mp4Box& moov, int& budget) {
    return MovieReader(file, budget).read(moov);
}

} // namespace quorel
