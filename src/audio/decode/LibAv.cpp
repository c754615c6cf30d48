#include "audio/decode/LibAv.h"

#include <dlfcn.h>

#include <optional>

namespace quorel {

namespace {

// By the major versions of the headers: only with these do the records' fields stand where the
// compiler put them.
constexpr const char* kCodecLibrary = "libavcodec.so." AV_STRINGIFY(LIBAVCODEC_VERSION_MAJOR);
constexpr const char* kUtilLibrary = "libavutil.so." AV_STRINGIFY(LIBAVUTIL_VERSION_MAJOR);

template <typename Function>
bool find(void* library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(::dlsym(library, name));
    return function != nullptr;
}

std::optional<LibAv> load() {
    // Never closed: its threads and exit handlers could outlive us.
    void* codec = ::dlopen(kCodecLibrary, RTLD_LAZY | RTLD_LOCAL);
    void* util = ::dlopen(kUtilLibrary, RTLD_LAZY | RTLD_LOCAL);
    if (codec == nullptr || util == nullptr) {
        return std::nullopt;
    }
    LibAv av;
    const bool complete = find(codec, "avcodec_find_decoder", av.findDecoder) &&
                          find(codec, "avcodec_alloc_context3", av.allocContext) &&
                          find(codec, "avcodec_free_context", av.freeContext) &&
                          find(codec, "avcodec_open2", av.openCodec) &&
                          find(codec, "avcodec_send_packet", av.sendPacket) &&
                          find(codec, "avcodec_receive_frame", av.receiveFrame) &&
                          find(codec, "avcodec_flush_buffers", av.flushBuffers) &&
                          find(codec, "av_packet_alloc", av.allocPacket) &&
                          find(codec, "av_packet_free", av.freePacket) &&
                          find(util, "av_frame_alloc", av.allocFrame) &&
                          find(util, "av_frame_free", av.freeFrame) &&
                          find(util, "av_mallocz", av.mallocZeroed) &&
                          find(util, "av_channel_layout_default", av.defaultLayout) &&
                          find(util, "av_log_set_level", av.setLogLevel);
    if (!complete) {
        return std::nullopt;
    }
    av.setLogLevel(AV_LOG_QUIET);
    return av;
}

} // namespace

const LibAv* LibAv::get() {
    static const std::optional<LibAv> loaded = load();
    return loaded ? &*loaded : nullptr;
}

} // namespace quorel
