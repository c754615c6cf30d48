#pragma once

#include "audio/decode/MpegInfoTag.h"
#include "audio/decode/MpegWalker.h"

#include <vector>

namespace quorel {

/// Where the frames of a stream lie: the place of every 16th, so that the index of hours takes
/// kilobytes and the others are a short walk away.
class MpegIndex {
  public:
    /// Walks the whole stream from its first frame on, which is left out when it is an info tag.
    explicit MpegIndex(MpegWalker& walker);

    int64_t count() const { return count_; } ///< frames
    int64_t bytes() const { return bytes_; } ///< that they take
    const std::optional<MpegInfoTag>& tag() const { return tag_; }

    /// Makes the walker's next() give a frame, 0 to count() - 1. False when the file has changed,
    /// or the walker was stopped.
    bool moveTo(MpegWalker& walker, int64_t number) const;

    /// The frame to start decoding at so that frame `number` comes out as in a decode from the
    /// first one; none as with moveTo().
    std::optional<int64_t> decodeFrom(MpegWalker& walker, int64_t number) const;

  private:
    std::optional<int64_t> reservoirStart(MpegWalker& walker, int64_t number) const;

    int64_t count_ = 0;
    int64_t bytes_ = 0;
    std::vector<int64_t> places_; // in bytes, of every 16th frame
    std::optional<MpegInfoTag> tag_;
};

} // namespace quorel
