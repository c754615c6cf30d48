#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/avutil.h>
}

namespace quorel {

/// FFmpeg's decoders. The program does not link them (they and what they need cost more at its
/// start than all the rest): they are loaded when the first file asks for one, and stay.
struct LibAv {
    /// The library's functions, or null when it is not installed. Any thread; the first call takes
    /// tens of milliseconds.
    static const LibAv* get();

    decltype(&::avcodec_find_decoder) findDecoder = nullptr;
    decltype(&::avcodec_alloc_context3) allocContext = nullptr;
    decltype(&::avcodec_free_context) freeContext = nullptr;
    decltype(&::avcodec_open2) openCodec = nullptr;
    decltype(&::avcodec_send_packet) sendPacket = nullptr;
    decltype(&::avcodec_receive_frame) receiveFrame = nullptr;
    decltype(&::avcodec_flush_buffers) flushBuffers = nullptr;
    decltype(&::av_packet_alloc) allocPacket = nullptr;
    decltype(&::av_packet_free) freePacket = nullptr;
    decltype(&::av_frame_alloc) allocFrame = nullptr;
    decltype(&::av_frame_free) freeFrame = nullptr;
    decltype(&::av_mallocz) mallocZeroed = nullptr;
    decltype(&::av_channel_layout_default) defaultLayout = nullptr;
    decltype(&::av_log_set_level) setLogLevel = nullptr;
};

} // namespace quorel
