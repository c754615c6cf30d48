// MPEG audio and ADTS, which begin with no mark; anything else that opens is played too.
#include "Play.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    quorel::fuzz::play(data, size, {});
    return 0;
}
