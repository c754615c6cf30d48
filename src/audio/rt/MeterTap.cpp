#include "audio/rt/MeterTap.h"

#include "audio/rt/BlockOps.h"

#include <algorithm>
#include <bit>
#include <mutex>

namespace quorel::rt {

namespace {
void takeChannel(const float* pair, float* out, int count) noexcept {
    for (int i = 0; i < count; ++i) {
        out[i] = pair[2 * i];
    }
}
} // namespace

void MeterTap::prepare(const Format& format) {
    channels_ = format.channels();
    const auto size =
        std::bit_ceil(static_cast<std::size_t>(format.sampleRate + MeterFrames::kCapacity + kHop));
    left_.assign(size, 0.0F);
    right_.assign(channels_ > 1 ? size : 0, 0.0F);
    passed_ = 0;
    nextHop_ = kHop;
}

void MeterTap::process(Block& block) noexcept {
    if (left_.empty()) {
        return; // never prepared
    }
    keep(block);
    const auto longest = static_cast<int64_t>(left_.size()) - MeterFrames::kCapacity - kHop;
    const int64_t delay =
        std::clamp<int64_t>(outputDelay_.load(std::memory_order_relaxed), 0, longest);
    const int64_t heard = passed_ - delay;
    if (heard < nextHop_) {
        return;
    }
    // A delay that has shrunk may have carried the ear over several hops.
    const int64_t end = heard - heard % kHop;
    if (deliver(end)) {
        nextHop_ = end + kHop;
    }
}

void MeterTap::keep(const Block& block) noexcept {
    const float* in = samples(block, 0);
    for (int done = 0; done < block.frames;) {
        // In stretches up to the ring's end, which become vector code.
        const std::size_t at = static_cast<std::size_t>(passed_) & (left_.size() - 1);
        const int count = static_cast<int>(
            std::min(static_cast<std::size_t>(block.frames - done), left_.size() - at));
        takeChannel(in, left_.data() + at, count);
        if (channels_ > 1) {
            takeChannel(in + 1, right_.data() + at, count);
        }
        in += 2 * count;
        done += count;
        passed_ += count;
    }
}

// False when the main thread is reading; the next block tries again.
bool MeterTap::deliver(int64_t end) noexcept {
    const std::unique_lock lock(frames_.meterLock, std::try_to_lock);
    if (!lock) {
        return false;
    }
    const int64_t begin = end - MeterFrames::kCapacity;
    copyKept(left_, begin, frames_.meterL.data());
    if (channels_ > 1) {
        copyKept(right_, begin, frames_.meterR.data());
    }
    frames_.meterCount = MeterFrames::kCapacity;
    frames_.meterChannels = channels_;
    return true;
}

// A negative frame number stands in the ring's untouched end, which is silence: the ring is not
// full by then.
void MeterTap::copyKept(const std::vector<float>& kept, int64_t begin, float* out) const noexcept {
    const std::size_t first = static_cast<std::size_t>(begin) & (kept.size() - 1);
    const std::size_t count = std::min<std::size_t>(MeterFrames::kCapacity, kept.size() - first);
    std::copy_n(kept.begin() + static_cast<std::ptrdiff_t>(first), count, out);
    std::copy_n(kept.begin(), MeterFrames::kCapacity - count, out + count);
}

} // namespace quorel::rt
