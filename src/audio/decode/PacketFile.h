#pragma once

#include "audio/decode/AudioReader.h"
#include "audio/decode/BlockFile.h"
#include "audio/decode/CodecDecoder.h"
#include "audio/decode/PacketTable.h"

#include <vector>

namespace quorel {

/// The coded sound of a container: what decodes it, where its packets lie and which part sounds.
struct PacketStream {
    explicit PacketStream(const InputFile& file)
        : packets(file.size()) {}

    CodecDecoder::Codec codec = CodecDecoder::Codec::Aac;
    std::vector<std::byte> extradata;
    int sampleRate = 0; ///< Hz; the packets may say otherwise
    int channels = 0;
    int64_t ticksPerSecond = 0; ///< the clock of the packets, the origin and the length
    PacketTable packets;
    int64_t origin = 0; ///< where the sound starts, behind the encoder's delay
    int64_t length = 0;
};

/// Compressed sound whose container says where each packet lies and when it sounds.
///
/// Packets that cannot be decoded are silence, so that what follows keeps its place.
class PacketFile : public BlockFile {
  public:
    static OpenedAudioFile open(AudioSource source, PacketStream stream);

    double dataRate() const override;

  private:
    PacketFile(AudioSource source, PacketStream stream, std::unique_ptr<CodecDecoder> decoder);

    bool findFormat();
    void countFrames(std::size_t framesOfPacket);
    void findLength();
    bool readPacket(const Packet& packet);
    bool goToPosition() override;
    bool decodeNext() override;
    int64_t deliver(float* out, int64_t frames) override;
    int64_t blockStart() const override { return blockStart_ - origin_; }
    int64_t blockEnd() const override { return blockEnd_ - origin_; }
    int64_t frameAt(int64_t ticks) const;
    void dropBlock();
    int64_t blockFrames() const;

    AudioSource source_;
    PacketStream stream_;
    std::unique_ptr<CodecDecoder> decoder_;
    int64_t soundEnd_ = 0;     // of all packets, in frames, as all below
    int64_t origin_ = 0;       // where the sound starts
    std::size_t next_ = 0;     // the packet behind the block
    std::vector<float> block_; // the newest packet's sound
    int64_t blockStart_ = 0;   // its place, from the first packet on
    int64_t blockEnd_ = 0;     // may lie behind its sound: silence in between
    std::vector<std::byte> packet_;
};

} // namespace quorel
