#pragma once

#include "audio/decode/AudioReader.h"
#include "audio/decode/BlockFile.h"
#include "audio/decode/FlacDecoder.h"
#include "audio/decode/FlacMetadata.h"
#include "audio/decode/FlacScanner.h"

namespace quorel {

bool recognisesFlac(std::span<const std::byte> head);
OpenedAudioFile openFlac(AudioSource source);
/// By the file's head, where that tells the length and the frames begin behind it.
std::optional<AudioProperties> measureFlac(const AudioSource& source);

/// Native FLAC, also behind an ID3v2 tag.
inline constexpr AudioReader kFlacReader{recognisesFlac, openFlac, measureFlac};

/// A FLAC file. Frames lost to damage are silence, so that what follows keeps its place; frames of
/// another rate or channel count end the stream.
class FlacFile : public BlockFile {
  public:
    FlacFile(AudioSource source, const FlacMetadata& metadata);

    /// Whether there is any frame to play, or none is claimed to be. Before the first read only.
    bool isPlayable();

    double dataRate() const override;

  private:
    int64_t statedOrFoundLength();
    bool findWayOn(int64_t expected);
    bool goToPosition() override;
    bool decodeNext() override;
    int64_t deliver(float* out, int64_t frames) override;
    int64_t blockStart() const override { return blockStart_; }
    int64_t blockEnd() const override { return blockStart_ + block_.frames; }

    AudioSource source_;
    FlacStreamInfo info_;
    FlacScanner scanner_;
    FlacDecoder decoder_;
    int64_t nextOffset_; // of the frame behind the block
    FlacDecoder::Block block_;
    int64_t blockStart_ = 0; // number of the block's first frame
};

} // namespace quorel
