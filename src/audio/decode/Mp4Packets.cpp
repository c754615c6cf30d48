#include "audio/decode/Mp4Packets.h"

#include "audio/decode/FileCursor.h"

#include <algorithm>
#include <array>

namespace quorel {

namespace {

constexpr uint64_t kMaxOffset = uint64_t{1} << 60;

FileCursor tableIn(const InputFile& file, const Mp4Box& box) {
    FileCursor table(file, box.begin, box.end);
    table.skip(4); // version and flags
    return table;
}

/// Reads runs of equal values: a count, then the value.
class TimeRuns {
  public:
    explicit TimeRuns(FileCursor table)
        : table_(std::move(table)) {
        table_.skip(4);
    }
    /// The next packet's duration; the last one's where the table ends early.
    uint32_t next() {
        while (left_ == 0 && table_.has(8)) {
            left_ = table_.number(4);
            ticks_ = static_cast<uint32_t>(table_.number(4));
        }
        left_ -= left_ > 0 ? 1 : 0;
        return ticks_;
    }

  private:
    FileCursor table_;
    uint64_t left_ = 0;
    uint32_t ticks_ = 0;
};

/// How many packets each chunk has: entries of a chunk's number from which on a count holds.
class ChunkCounts {
  public:
    explicit ChunkCounts(FileCursor table)
        : table_(std::move(table)) {
        table_.skip(4);
        readEntry();
    }
    /// Of chunk `number`, which starts at 1 and grows with each call.
    uint64_t of(uint64_t number) {
        while (more_ && number >= nextFirst_) {
            count_ = nextCount_;
            readEntry();
        }
        return count_;
    }

  private:
    void readEntry() {
        more_ = table_.has(12);
        nextFirst_ = table_.number(4);
        nextCount_ = table_.number(4);
        table_.skip(4);
    }
    FileCursor table_;
    bool more_ = false;
    uint64_t nextFirst_ = 0;
    uint64_t nextCount_ = 0;
    uint64_t count_ = 0;
};

struct FragmentTrack {
    bool ours = false;
    int64_t base = 0; // that the offsets count from
    Mp4FragmentDefaults defaults;
};

FragmentTrack readFragmentHeader(FileCursor header, int64_t moofOffset, const Mp4Movie& movie) {
    header.skip(1);
    const uint64_t flags = header.number(3);
    FragmentTrack track{movie.track && header.number(4) == movie.track->id, moofOffset,
                        movie.defaults};
    if ((flags & 0x01) != 0) {
        track.base = static_cast<int64_t>(std::min(header.number(8), kMaxOffset));
    }
    header.skip((flags & 0x02) != 0 ? 4 : 0);
    if ((flags & 0x08) != 0) {
        track.defaults.ticks = static_cast<uint32_t>(header.number(4));
    }
    if ((flags & 0x10) != 0) {
        track.defaults.bytes = static_cast<uint32_t>(header.number(4));
    }
    return track;
}

constexpr int64_t kMaxSummed = 1'000'000; // packets; six hours of AAC

// Of `count` sizes in a row, from byte `offset` on; -1 where the file has fewer.
int64_t sumOfSizes(const InputFile& file, int64_t offset, int64_t count) {
    std::array<std::byte, 16384> window{};
    int64_t sum = 0;
    while (count > 0) {
        const auto wanted =
            std::min<std::size_t>(window.size(), 4 * static_cast<std::size_t>(count));
        const auto sizes = std::span(window).first(wanted);
        if (file.readAt(offset, sizes) != wanted) {
            return -1;
        }
        for (std::size_t i = 0; i < wanted; i += 4) {
            sum += static_cast<int64_t>(loadUnsigned(&sizes[i], 4, std::endian::big));
        }
        offset += static_cast<int64_t>(wanted);
        count -= static_cast<int64_t>(wanted / 4);
    }
    return sum;
}

// Adds up the times of `sums.packets` packets; false where the table has more or fewer of them.
bool sumTimes(FileCursor table, Mp4PacketSums& sums) {
    const uint64_t runs = table.number(4);
    int64_t counted = 0;
    for (uint64_t i = 0; i < runs && table.has(8); ++i) {
        const auto count = static_cast<int64_t>(table.number(4));
        const auto ticks = static_cast<uint32_t>(table.number(4));
        sums.firstTicks = counted == 0 ? ticks : sums.firstTicks;
        sums.lastTicks = count > 0 ? ticks : sums.lastTicks;
        counted += count;
        sums.ticks += count * ticks;
        if (counted > sums.packets) {
            return false;
        }
    }
    return counted == sums.packets;
}

// How many packets the chunks have.
int64_t packetsInChunks(FileCursor table, int64_t chunks) {
    const uint64_t entries = table.number(4);
    int64_t packets = 0;
    int64_t first = 0; // chunk of the entry before
    int64_t each = 0;
    for (uint64_t i = 0; i < entries && table.has(12) && packets <= kMaxSummed; ++i) {
        const auto next = static_cast<int64_t>(table.number(4));
        if (next <= first || next > chunks || (first == 0 && next != 1)) {
            return -1;
        }
        packets += (next - first) * each;
        first = next;
        each = static_cast<int64_t>(table.number(4));
        table.skip(4);
    }
    return packets + (chunks + 1 - first) * each;
}

// Adds the packets of a trun box. `offset` is where they start unless it says so; afterwards, where
// they end.
void readRun(FileCursor run, const FragmentTrack& track, int64_t& offset, PacketTable& packets) {
    run.skip(1);
    const uint64_t flags = run.number(3);
    const bool hasTicks = (flags & 0x100) != 0;
    const bool hasBytes = (flags & 0x200) != 0;
    const int rest = ((flags & 0x400) != 0 ? 4 : 0) + ((flags & 0x800) != 0 ? 4 : 0);
    const int entry = (hasTicks ? 4 : 0) + (hasBytes ? 4 : 0) + rest;
    uint64_t count = run.number(4);
    if ((flags & 0x01) != 0) {
        offset = track.base + static_cast<int32_t>(run.number(4));
    }
    run.skip((flags & 0x04) != 0 ? 4 : 0);
    for (; count > 0 && run.has(entry); --count) {
        const auto ticks = hasTicks ? static_cast<uint32_t>(run.number(4)) : track.defaults.ticks;
        const auto bytes = hasBytes ? static_cast<uint32_t>(run.number(4)) : track.defaults.bytes;
        run.skip(rest);
        if (offset < 0 || bytes == 0 || !packets.add(offset, bytes, ticks)) {
            return;
        }
        offset += bytes;
    }
}

} // namespace

PacketTable readMp4Packets(const InputFile& file, const Mp4Track& track) {
    PacketTable packets(file.size());
    TimeRuns times(tableIn(file, track.times));
    ChunkCounts counts(tableIn(file, track.chunks));
    FileCursor sizes = tableIn(file, track.sizes);
    const auto commonBytes = static_cast<uint32_t>(sizes.number(4));
    uint64_t left = sizes.number(4);
    if (commonBytes == 0) {
        left = std::min(left, static_cast<uint64_t>(sizes.remaining()) / 4);
    }
    packets.reserve(left);
    FileCursor offsets = tableIn(file, track.offsets);
    const int offsetBytes = track.offsets.name == fourCc("co64") ? 8 : 4;
    const uint64_t chunks = offsets.number(4);
    for (uint64_t chunk = 1; chunk <= chunks && left > 0 && offsets.has(offsetBytes); ++chunk) {
        auto offset = static_cast<int64_t>(std::min(offsets.number(offsetBytes), kMaxOffset));
        uint64_t count = std::min(counts.of(chunk), left);
        if (count == 0) {
            break; // nonsense, which may go on for long
        }
        for (; count > 0; --count, --left) {
            const auto bytes =
                commonBytes != 0 ? commonBytes : static_cast<uint32_t>(sizes.number(4));
            if (!packets.add(offset, bytes, times.next())) {
                return packets;
            }
            offset += bytes;
        }
    }
    return packets;
}

std::optional<Mp4PacketSums> sumMp4Packets(const InputFile& file, const Mp4Track& track) {
    FileCursor sizes = tableIn(file, track.sizes);
    const auto commonBytes = static_cast<int64_t>(sizes.number(4));
    Mp4PacketSums sums;
    sums.packets = static_cast<int64_t>(sizes.number(4));
    const auto chunks = static_cast<int64_t>(tableIn(file, track.offsets).number(4));
    const int64_t offsetBytes = track.offsets.name == fourCc("co64") ? 8 : 4;
    if (sums.packets == 0 || sums.packets > kMaxSummed ||
        chunks * offsetBytes > track.offsets.end - track.offsets.begin - 8 ||
        packetsInChunks(tableIn(file, track.chunks), chunks) != sums.packets ||
        !sumTimes(tableIn(file, track.times), sums)) {
        return std::nullopt;
    }
    sums.bytes = commonBytes != 0 ? commonBytes * sums.packets
                 : 4 * sums.packets <= sizes.remaining()
                     ? sumOfSizes(file, track.sizes.begin + 12, sums.packets)
                     : -1;
    return sums.bytes >= 0 ? std::optional(sums) : std::nullopt;
}

void readMp4Fragment(const InputFile& file, const Mp4Box& moof, int64_t moofOffset,
                     const Mp4Movie& movie, PacketTable& packets, int& budget) {
    Mp4Walk fragment(file, moof.begin, moof.end, budget);
    while (const auto traf = fragment.next()) {
        if (traf->name != fourCc("traf")) {
            continue;
        }
        FragmentTrack track;
        int64_t offset = moofOffset;
        Mp4Walk parts(file, traf->begin, traf->end, budget);
        while (const auto part = parts.next()) {
            FileCursor content(file, part->begin, part->end);
            if (part->name == fourCc("tfhd")) {
                track = readFragmentHeader(std::move(content), moofOffset, movie);
                offset = track.base;
            } else if (part->name == fourCc("tfdt") && track.ours) {
                const int bytes = content.number(1) == 1 ? 8 : 4;
                content.skip(3);
                packets.advanceTo(
                    static_cast<int64_t>(std::min<uint64_t>(content.number(bytes), kMaxOffset)));
            } else if (part->name == fourCc("trun") && track.ours) {
                readRun(std::move(content), track, offset, packets);
            }
        }
    }
}

} // namespace quorel
