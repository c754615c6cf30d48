#pragma once

#include "audio/decode/Mp4Movie.h"
#include "audio/decode/PacketTable.h"

namespace quorel {

/// The packets that a track's sample tables list.
PacketTable readMp4Packets(const InputFile& file, const Mp4Track& track);

/// What the packets of a track's sample tables come to.
struct Mp4PacketSums {
    int64_t packets = 0;
    int64_t bytes = 0;
    int64_t ticks = 0;
    uint32_t firstTicks = 0; ///< of the first packet
    uint32_t lastTicks = 0;
};

/// The same as of readMp4Packets, many times faster. Nothing where the tables contradict each
/// other, or there are no packets.
std::optional<Mp4PacketSums> sumMp4Packets(const InputFile& file, const Mp4Track& track);

/// Adds those of a fragment (a moof box) that belong to the movie's track.
void readMp4Fragment(const InputFile& file, const Mp4Box& moof, int64_t moofOffset,
                     const Mp4Movie& movie, PacketTable& packets, int& budget);

} // namespace quorel
