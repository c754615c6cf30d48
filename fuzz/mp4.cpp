// MP4: m4a and m4b.
#include "Play.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    quorel::fuzz::play(data, size, {{4, "ftyp"}});
    return 0;
}
