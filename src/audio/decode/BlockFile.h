#pragma once

#include "audio/decode/AudioFile.h"

namespace quorel {

/// A file of coded sound that is decoded block by block: the newest block is kept, and reads are
/// served from it, from the ones behind it, or from where a seek leads.
class BlockFile : public AudioFile {
  public:
    int64_t position() const final { return position_; }
    bool seek(int64_t frame) final;
    int64_t read(float* interleaved, int64_t frames) final;

  protected:
    /// The frames of the block, counted as positions are; equal when there is none.
    virtual int64_t blockStart() const = 0;
    virtual int64_t blockEnd() const = 0;
    /// Gets ready for decodeNext() to come to the position. Part of a read, so that cancel() can
    /// interrupt it: false then, and tried again by the next one.
    virtual bool goToPosition() = 0;
    /// Replaces the block by the next one; false at the end, or when cancelled.
    virtual bool decodeNext() = 0;
    /// Hands out up to so many frames of the block, from the position on, and moves that on.
    virtual int64_t deliver(float* out, int64_t frames) = 0;

    int64_t position_ = 0;
    bool searching_ = true; ///< the block at the position is yet to be looked for
};

} // namespace quorel
