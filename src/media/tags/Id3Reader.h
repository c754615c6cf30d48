#pragma once

#include "audio/decode/InputFile.h"

#include <QStringList>
#include <string_view>
#include <vector>

namespace quorel {

/// A text that an ID3v2 tag holds.
struct Id3Item {
    std::string_view id; ///< the frame's name in ID3v2.3 and 2.4, whatever the tag's version
    QString description; ///< of a comment; mostly empty
    QStringList values;  ///< as stored; at least one, and only in ID3v2.4 more than one
};

/// The texts that the player shows (TIT2, TPE1, TALB, TPE2, TCON, TYER, TDRC, TRCK, TPOS, TCOM and
/// COMM), in the order of their frames, of the ID3v2.2, 2.3 or 2.4 tag at byte `begin`; nothing
/// where there is none. It may be unsynchronised, have an extended header and compressed frames;
/// encrypted frames and those beyond 1 MiB are left out. Reads no more of the file than it needs:
/// not the pictures. Blocks on the disk.
std::vector<Id3Item> readId3Tag(const InputFile& file, int64_t begin, int64_t end);

struct Id3Contents {
    std::vector<Id3Item> items;
    int64_t otherFrames = 0; ///< pictures, lyrics and whatever else gives no text to show
};

/// The same, and how much more there is.
Id3Contents readId3Contents(const InputFile& file, int64_t begin, int64_t end);

} // namespace quorel
