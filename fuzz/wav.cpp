// WAV files, with plain samples and with coded ones.
#include "Play.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    quorel::fuzz::play(data, size, {{0, "RIFF"}, {8, "WAVE"}});
    return 0;
}
