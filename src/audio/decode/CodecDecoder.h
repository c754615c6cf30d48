#pragma once

#include "audio/rt/Format.h"

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace quorel {

/// Packets of one codec in, 32-bit float frames out. One thread at a time.
class CodecDecoder {
  public:
    enum class Codec { Mp1, Mp2, Mp3, Aac, Alac, AdpcmMs, AdpcmIma };

    /// Null when the codec cannot be opened; `error` then says why. `extradata` may be empty: Aac's
    /// is an AudioSpecificConfig (without one, packets carry ADTS headers), Alac's the 36 bytes of
    /// alacExtradata(). `sampleRate` in Hz, `channels` from 1 to rt::kMaxChannels; packets may say
    /// otherwise.
    static std::unique_ptr<CodecDecoder> open(Codec codec, std::span<const std::byte> extradata,
                                              int sampleRate, int channels, std::string& error);
    ~CodecDecoder();

    /// Decodes one packet and appends its frames, interleaved, to `frames`; false when it is
    /// damaged (nothing or fewer frames appended). The caller knows the positions.
    bool decode(std::span<const std::byte> packet, std::vector<float>& frames);

    /// Appends what the codec still holds at the end of the stream; reset() must follow before
    /// the next decode().
    void drain(std::vector<float>& frames);

    /// As freshly opened: nothing of earlier packets is left.
    void reset();

    /// Of the newest frames; before there are any, as opened.
    int sampleRate() const { return format_.sampleRate; }
    int channels() const { return format_.channels(); }
    rt::ChannelLayout layout() const { return format_.layout; }

  private:
    struct State;

    explicit CodecDecoder(std::unique_ptr<State> state, const rt::Format& format);
    bool takeFrames(std::vector<float>& frames);

    std::unique_ptr<State> state_;
    rt::Format format_;
};

/// The 36 bytes that Codec::Alac wants, from an ALACSpecificConfig of at least 24 bytes; empty when
/// that is too short or absurd.
std::vector<std::byte> alacExtradata(std::span<const std::byte> config);

} // namespace quorel
