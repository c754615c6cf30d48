#include "audio/decode/PacketTable.h"

#include <algorithm>

namespace quorel {

namespace {
// A damaged file cannot ask for more than some 50 MB. Whole days of sound stay far below.
constexpr uint64_t kMaxPackets = 6'000'000;
constexpr std::size_t kMaxPieces = 750'000;
constexpr std::size_t kMaxRuns = 250'000;
constexpr uint32_t kMaxPiecePackets = 256; // whose sizes are added up to find one
constexpr int64_t kMaxTime = int64_t{1} << 41;

template <typename Parts, typename Value, typename Field>
auto partAt(const Parts& parts, Value value, Field field) {
    const auto behind =
        std::upper_bound(parts.begin(), parts.end(), value,
                         [&](Value v, const auto& part) { return v < part.*field; });
    return behind == parts.begin() ? behind : behind - 1;
}
} // namespace

PacketTable::PacketTable(int64_t fileBytes)
    : most_(std::min(static_cast<uint64_t>(std::max<int64_t>(0, fileBytes)), kMaxPackets)) {}

void PacketTable::reserve(uint64_t packets) {
    sizes_.reserve(static_cast<std::size_t>(std::min(packets, most_)));
}

bool PacketTable::add(int64_t offset, uint32_t bytes, uint32_t ticks) {
    const auto index = static_cast<uint32_t>(sizes_.size());
    if (index >= most_ || end_ > kMaxTime) {
        return false;
    }
    const bool newPiece = offset != nextOffset_ || index - pieces_.back().first >= kMaxPiecePackets;
    const bool newRun = runs_.empty() || runs_.back().ticks != ticks ||
                        runs_.back().start + int64_t{index - runs_.back().first} * ticks != end_;
    if ((newPiece && pieces_.size() >= kMaxPieces) || (newRun && runs_.size() >= kMaxRuns)) {
        return false;
    }
    if (newPiece) {
        pieces_.push_back({offset, index});
    }
    if (newRun) {
        runs_.push_back({end_, index, ticks});
    }
    sizes_.push_back(bytes);
    nextOffset_ = offset + bytes;
    end_ += ticks;
    bytes_ += bytes;
    return true;
}

void PacketTable::advanceTo(int64_t time) {
    end_ = std::max(end_, std::min(time, kMaxTime));
}

void PacketTable::retime(uint32_t ticks) {
    runs_.assign(sizes_.empty() ? 0 : 1, Run{0, 0, ticks});
    end_ = static_cast<int64_t>(sizes_.size()) * ticks;
}

Packet PacketTable::at(std::size_t index) const {
    const Piece& piece = *partAt(pieces_, index, &Piece::first);
    const Run& run = *partAt(runs_, index, &Run::first);
    Packet packet;
    packet.offset = piece.offset;
    for (std::size_t i = piece.first; i < index; ++i) {
        packet.offset += sizes_[i];
    }
    packet.bytes = sizes_[index];
    packet.start = run.start + static_cast<int64_t>(index - run.first) * run.ticks;
    packet.end = packet.start + run.ticks;
    return packet;
}

std::size_t PacketTable::indexAt(int64_t time) const {
    if (runs_.empty()) {
        return 0;
    }
    const auto run = partAt(runs_, time, &Run::start);
    const std::size_t behind = run + 1 == runs_.end() ? sizes_.size() : (run + 1)->first;
    const int64_t into = run->ticks > 0 ? std::max<int64_t>(0, time - run->start) / run->ticks : 0;
    return std::min(run->first + static_cast<std::size_t>(into), behind - 1);
}

} // namespace quorel
