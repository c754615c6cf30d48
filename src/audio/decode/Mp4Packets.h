#pragma once

#include "audio/decode/Mp4Movie.h"
#include "audio/decode/PacketTable.h"

namespace quorel {

/// The packets that a track's sample tables list.
PacketTable readMp4Packets(const InputFile& file, const Mp4Track& track);

/// Adds those of a fragment (a moof box) that belong to the movie's track.
void readMp4Fragment(const InputFile& file, const Mp4Box& moof, int64_t moofOffset,
                     const Mp4Movie& movie, PacketTable& packets, int& budget);

} // namespace quorel
