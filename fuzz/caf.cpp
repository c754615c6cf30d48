// Core Audio files.
#include "Play.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    quorel::fuzz::play(data, size, {{0, "caff"}});
    return 0;
}
