#include "audio/decode/CodecDecoder.h"

#include "audio/decode/Bytes.h"
#include "audio/decode/ChannelMask.h"
#include "audio/decode/LibAv.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>
#include <utility>

namespace quorel {

namespace {

AVCodecID idOf(CodecDecoder::Codec codec) {
    switch (codec) {
    case CodecDecoder::Codec::Mp1:
        return AV_CODEC_ID_MP1;
    case CodecDecoder::Codec::Mp2:
        return AV_CODEC_ID_MP2;
    case CodecDecoder::Codec::Mp3:
        return AV_CODEC_ID_MP3;
    case CodecDecoder::Codec::Aac:
        return AV_CODEC_ID_AAC;
    case CodecDecoder::Codec::Alac:
        return AV_CODEC_ID_ALAC;
    case CodecDecoder::Codec::AdpcmMs:
        return AV_CODEC_ID_ADPCM_MS;
    case CodecDecoder::Codec::AdpcmIma:
        return AV_CODEC_ID_ADPCM_IMA_WAV;
    }
    return AV_CODEC_ID_NONE;
}

rt::ChannelLayout layoutOf(const AVChannelLayout& layout) {
    // The masks' first bits are those of WAVE_FORMAT_EXTENSIBLE.
    constexpr uint64_t kWaveBits = 0x3FFFF;
    const bool known = layout.order == AV_CHANNEL_ORDER_NATIVE && (layout.u.mask & ~kWaveBits) == 0;
    return layoutOfMask(layout.nb_channels, known ? static_cast<uint32_t>(layout.u.mask) : 0);
}

template <typename Sample>
float toFloat(Sample sample) {
    if constexpr (std::is_same_v<Sample, uint8_t>) {
        return static_cast<float>(sample - 128) / 128.0F;
    } else if constexpr (std::is_integral_v<Sample>) {
        constexpr float kScale = 1.0F / -static_cast<float>(std::numeric_limits<Sample>::min());
        return static_cast<float>(sample) * kScale;
    } else {
        // What is no finite float would never leave a filter again.
        const auto value = static_cast<float>(sample);
        return std::isfinite(value) ? value : 0.0F;
    }
}

template <typename Sample>
void append(const AVFrame& frame, bool planar, std::vector<float>& out) {
    const auto channels = static_cast<std::size_t>(frame.ch_layout.nb_channels);
    const auto frames = static_cast<std::size_t>(frame.nb_samples);
    const std::size_t start = out.size();
    out.resize(start + frames * channels);
    for (std::size_t channel = 0; channel < channels; ++channel) {
        const void* plane = frame.extended_data[planar ? channel : 0];
        const Sample* in = static_cast<const Sample*>(plane) + (planar ? 0 : channel);
        const std::size_t step = planar ? 1 : channels;
        float* to = out.data() + start + channel;
        for (std::size_t i = 0; i < frames; ++i) {
            to[i * channels] = toFloat(in[i * step]);
        }
    }
}

bool append(const AVFrame& frame, std::vector<float>& out) {
    switch (frame.format) {
    case AV_SAMPLE_FMT_U8:
    case AV_SAMPLE_FMT_U8P:
        append<uint8_t>(frame, frame.format == AV_SAMPLE_FMT_U8P, out);
        return true;
    case AV_SAMPLE_FMT_S16:
    case AV_SAMPLE_FMT_S16P:
        append<int16_t>(frame, frame.format == AV_SAMPLE_FMT_S16P, out);
        return true;
    case AV_SAMPLE_FMT_S32:
    case AV_SAMPLE_FMT_S32P:
        append<int32_t>(frame, frame.format == AV_SAMPLE_FMT_S32P, out);
        return true;
    case AV_SAMPLE_FMT_FLT:
    case AV_SAMPLE_FMT_FLTP:
        append<float>(frame, frame.format == AV_SAMPLE_FMT_FLTP, out);
        return true;
    case AV_SAMPLE_FMT_DBL:
    case AV_SAMPLE_FMT_DBLP:
        append<double>(frame, frame.format == AV_SAMPLE_FMT_DBLP, out);
        return true;
    default:
        return false;
    }
}

} // namespace

struct CodecDecoder::State {
    State(const LibAv& library, Codec which, std::span<const std::byte> data, rt::Format opened)
        : av(library)
        , codec(which)
        , extradata(data.begin(), data.end())
        , format(opened)
        , packet(av.allocPacket())
        , frame(av.allocFrame()) {}
    State(const State&) = delete;
    State& operator=(const State&) = delete;
    ~State() {
        av.freeContext(&context);
        av.freePacket(&packet);
        av.freeFrame(&frame);
    }

    bool openContext();

    const LibAv& av;
    Codec codec;
    std::vector<std::byte> extradata;
    rt::Format format;
    AVPacket* packet;
    AVFrame* frame;
    AVCodecContext* context = nullptr;
    std::vector<uint8_t> input; // the packet and the zeros that the decoder may read behind it
    bool fresh = true;
};

bool CodecDecoder::State::openContext() {
    av.freeContext(&context);
    fresh = true;
    const AVCodec* decoder = av.findDecoder(idOf(codec));
    context = decoder != nullptr ? av.allocContext(decoder) : nullptr;
    if (context == nullptr || packet == nullptr || frame == nullptr) {
        return false;
    }
    context->sample_rate = format.sampleRate;
    av.defaultLayout(&context->ch_layout, format.channels());
    context->thread_count = 1;
    context->flags2 |= AV_CODEC_FLAG2_SKIP_MANUAL; // where sound starts and ends is our business
    context->max_samples = 1 << 20;                // in a packet: more is damage
    if (codec == Codec::AdpcmMs || codec == Codec::AdpcmIma) {
        context->bits_per_coded_sample = 4;
    }
    if (!extradata.empty()) {
        void* copy = av.mallocZeroed(extradata.size() + AV_INPUT_BUFFER_PADDING_SIZE);
        if (copy == nullptr) {
            return false;
        }
        std::memcpy(copy, extradata.data(), extradata.size());
        context->extradata = static_cast<uint8_t*>(copy);
        context->extradata_size = static_cast<int>(extradata.size());
    }
    return av.openCodec(context, decoder, nullptr) == 0;
}

std::unique_ptr<CodecDecoder> CodecDecoder::open(Codec codec, std::span<const std::byte> extradata,
                                                 int sampleRate, int channels, std::string& error) {
    constexpr std::size_t kMaxExtradata = 65536;
    const LibAv* av = LibAv::get();
    if (av == nullptr) {
        error = "the decoder library (FFmpeg's libavcodec) is not installed";
        return nullptr;
    }
    const bool sane = channels >= 1 && channels <= rt::kMaxChannels && sampleRate > 0 &&
                      extradata.size() <= kMaxExtradata;
    const rt::Format format{sampleRate, rt::ChannelLayout::usual(sane ? channels : 1)};
    auto state = std::make_unique<State>(*av, codec, extradata, format);
    if (!sane || !state->openContext()) {
        error = "sound that the decoder cannot make out";
        return nullptr;
    }
    return std::unique_ptr<CodecDecoder>(new CodecDecoder(std::move(state), format));
}

CodecDecoder::CodecDecoder(std::unique_ptr<State> state, const rt::Format& format)
    : state_(std::move(state))
    , format_(format) {}

CodecDecoder::~CodecDecoder() = default;

bool CodecDecoder::decode(std::span<const std::byte> packet, std::vector<float>& frames) {
    constexpr std::size_t kMaxPacket = 16 << 20;
    State& s = *state_;
    if (s.context == nullptr || packet.empty() || packet.size() > kMaxPacket) {
        return false;
    }
    s.fresh = false;
    s.input.assign(packet.size() + AV_INPUT_BUFFER_PADDING_SIZE, 0);
    std::memcpy(s.input.data(), packet.data(), packet.size());
    s.packet->data = s.input.data();
    s.packet->size = static_cast<int>(packet.size());
    const bool taken = s.av.sendPacket(s.context, s.packet) == 0;
    s.packet->data = nullptr;
    s.packet->size = 0;
    return takeFrames(frames) && taken;
}

bool CodecDecoder::takeFrames(std::vector<float>& frames) {
    State& s = *state_;
    for (;;) {
        const int result = s.av.receiveFrame(s.context, s.frame);
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) {
            return true;
        }
        const int channels = result == 0 ? s.frame->ch_layout.nb_channels : 0;
        if (channels < 1 || channels > rt::kMaxChannels) {
            return false;
        }
        format_ = {s.frame->sample_rate, layoutOf(s.frame->ch_layout)};
        if (!append(*s.frame, frames)) {
            return false;
        }
    }
}

void CodecDecoder::drain(std::vector<float>& frames) {
    State& s = *state_;
    if (s.context != nullptr && !s.fresh && s.av.sendPacket(s.context, nullptr) == 0) {
        takeFrames(frames);
    }
}

void CodecDecoder::reset() {
    State& s = *state_;
    if (s.fresh) {
        return;
    }
    if (s.codec != Codec::Aac) {
        s.av.flushBuffers(s.context);
        s.fresh = true;
    } else if (!s.openContext()) { // a flush would keep the overlap of the newest packet
        s.av.freeContext(&s.context);
    }
}

std::vector<std::byte> alacExtradata(std::span<const std::byte> config) {
    constexpr std::size_t kConfigBytes = 24;
    constexpr uint64_t kMaxFrameLength = 65536; // the usual one is 4096
    if (config.size() < kConfigBytes) {
        return {};
    }
    const uint64_t frameLength = loadUnsigned(config.data(), 4, std::endian::big);
    const auto channels = std::to_integer<int>(config[9]);
    if (frameLength == 0 || frameLength > kMaxFrameLength || channels < 1 ||
        channels > rt::kMaxChannels) {
        return {};
    }
    std::vector<std::byte> box(12);
    box[3] = std::byte{36};
    std::memcpy(box.data() + 4, "alac", 4);
    box.insert(box.end(), config.begin(), config.begin() + kConfigBytes);
    return box;
}

} // namespace quorel
