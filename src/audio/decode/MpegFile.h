#pragma once

#include "audio/decode/AudioReader.h"
#include "audio/decode/BlockFile.h"
#include "audio/decode/CodecDecoder.h"
#include "audio/decode/MpegIndex.h"

#include <memory>
#include <vector>

namespace quorel {

OpenedAudioFile openMpeg(AudioSource source);
/// By the first frame where its info tag proves true, else by an index; nothing for ADTS.
std::optional<AudioProperties> measureMpeg(const AudioSource& source);

/// MPEG audio and AAC in ADTS. They have no head to be told by, only frames that follow each other,
/// so this reader claims whatever the others left and looks for them.
inline constexpr AudioReader kMpegReader{[](std::span<const std::byte>) { return true; }, openMpeg,
                                         measureMpeg};

/// A file of MPEG audio layer 1 to 3 or AAC in ADTS.
///
/// Frames follow each other without a pause whatever lies between them: junk has no duration. A
/// frame that is there and cannot be decoded is silence. Frames of another rate or channel count
/// end the stream.
class MpegFile : public BlockFile {
  public:
    explicit MpegFile(AudioSource source);

    /// Finds the frames and decodes the first ones; on failure says why. To be called once, before
    /// all else.
    bool open(std::string& error);

    double dataRate() const override;

  private:
    bool learnFormat(std::string& error);
    bool goToPosition() override;
    bool decodeNext() override;
    int64_t deliver(float* out, int64_t frames) override;
    int64_t blockStart() const override { return blockEnd() - blockFrames_; }
    int64_t blockEnd() const override { return nextPacket_ * packetFrames_ - origin_; }

    AudioSource source_;
    MpegWalker walker_;
    std::optional<MpegIndex> index_;
    std::unique_ptr<CodecDecoder> decoder_;
    int64_t packetFrames_ = 0; // that the decoder gives for a packet
    int64_t origin_ = 0;       // decoded frames before the sound's first one
    int64_t nextPacket_ = 0;   // number of the one behind the block
    int64_t blockFrames_ = 0;  // of the newest packet; 0 when there is none
    std::vector<float> block_;
};

} // namespace quorel
