#pragma once

#include "audio/decode/CodecDecoder.h"
#include "audio/decode/Mp4Boxes.h"

#include <optional>
#include <string>
#include <vector>

namespace quorel {

/// What a movie says about its sound track. Boxes that it lacks are empty.
struct Mp4Track {
    uint32_t id = 0;
    bool sound = false;
    uint32_t ticksPerSecond = 0;
    int64_t duration = 0;             ///< in ticks; 0 where unknown
    std::optional<int64_t> editStart; ///< in ticks: where the first edit that plays begins
    int64_t editDuration = 0;         ///< of all edits, in the movie's ticks
    uint32_t sampleEntry = 0;         ///< the codec's name
    std::optional<CodecDecoder::Codec> codec;
    std::vector<std::byte> extradata;
    int channels = 0;
    int sampleRate = 0;
    Mp4Box times;   ///< stts
    Mp4Box sizes;   ///< stsz
    Mp4Box chunks;  ///< stsc
    Mp4Box offsets; ///< stco or co64
};

/// What a track's fragments say only when it differs.
struct Mp4FragmentDefaults {
    uint32_t ticks = 0;
    uint32_t bytes = 0;
};

struct Mp4Movie {
    uint32_t ticksPerSecond = 0;
    std::optional<Mp4Track> track; ///< the first with sound that can be played, else with any
    bool fragmented = false;
    Mp4FragmentDefaults defaults;
    std::string gapless; ///< the text of iTunSMPB: the encoder's delay and the true length
};

/// Reads a moov box.
Mp4Movie readMp4Movie(const InputFile& file, const Mp4Box& moov, int& budget);

} // namespace quorel
