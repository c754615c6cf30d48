#include "audio/decode/MpegIndex.h"

#include <algorithm>
#include <array>
#include <utility>

namespace quorel {

namespace {
constexpr int64_t kStep = 16;
} // namespace

MpegIndex::MpegIndex(MpegWalker& walker) {
    bool first = true;
    while (walker.next()) {
        if (std::exchange(first, false)) {
            tag_ = MpegInfoTag::read(walker.packet(), walker.frame());
            if (tag_) {
                continue;
            }
        }
        if (count_ % kStep == 0) {
            places_.push_back(walker.offset());
        }
        ++count_;
        bytes_ += walker.frame().bytes;
    }
    places_.shrink_to_fit();
}

bool MpegIndex::moveTo(MpegWalker& walker, int64_t number) const {
    walker.moveTo(places_[static_cast<std::size_t>(number / kStep)]);
    for (int64_t i = number % kStep; i > 0; --i) {
        if (!walker.next()) {
            return false;
        }
    }
    return true;
}

std::optional<int64_t> MpegIndex::decodeFrom(MpegWalker& walker, int64_t number) const {
    // One for the overlap of the transform, and one whose window shape the next one needs.
    constexpr int64_t kAacFrames = 2;
    if (!moveTo(walker, number) || !walker.next()) {
        return std::nullopt;
    }
    return walker.frame().isAac() ? std::max<int64_t>(0, number - kAacFrames)
                                  : reservoirStart(walker, number);
}

// A layer 3 frame may begin its main data up to 511 bytes (9 bits) ahead of itself, in the main
// data of earlier frames. Besides, the filters hear the three frames before; the first frame
// decoded of all may lack main data of its own.
std::optional<int64_t> MpegIndex::reservoirStart(MpegWalker& walker, int64_t number) const {
    constexpr int kReservoirBytes = 511;
    constexpr int64_t kFilterFrames = 3;
    std::array<int, kStep> sizes{};
    int bytes = 0;
    int64_t start = number;
    while (start > 0) {
        const int64_t group = (start - 1) / kStep * kStep;
        const int64_t members = start - group;
        walker.moveTo(places_[static_cast<std::size_t>(group / kStep)]);
        for (int64_t i = 0; i < members; ++i) {
            if (!walker.next()) {
                return std::nullopt;
            }
            sizes[static_cast<std::size_t>(i)] = walker.frame().mainDataBytes;
        }
        for (int64_t i = members - 1; i >= 0; --i) {
            bytes += sizes[static_cast<std::size_t>(i)];
            --start;
            if (bytes >= kReservoirBytes && number - start >= kFilterFrames) {
                return std::max<int64_t>(0, start - 1);
            }
        }
    }
    return 0;
}

} // namespace quorel
