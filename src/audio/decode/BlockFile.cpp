#include "audio/decode/BlockFile.h"

#include <algorithm>

namespace quorel {

bool BlockFile::seek(int64_t frame) {
    position_ = std::clamp<int64_t>(frame, 0, length_);
    searching_ = searching_ || position_ < blockStart() || position_ >= blockEnd();
    return true;
}

int64_t BlockFile::read(float* interleaved, int64_t frames) {
    const int64_t wanted = std::min(frames, length_ - position_);
    int64_t done = 0;
    while (done < wanted && !cancelled()) {
        if (searching_ && !goToPosition()) {
            break;
        }
        searching_ = false;
        if (position_ >= blockEnd() && !decodeNext()) {
            break;
        }
        done += deliver(interleaved + done * channels(), wanted - done);
    }
    return done;
}

} // namespace quorel
