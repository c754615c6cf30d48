#include "audio/decode/FlacScanner.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace quorel {

namespace {

constexpr std::size_t kWindowBytes = 65536;
/// Where bisecting ends and walking from frame to frame begins.
constexpr int64_t kWalkBytes = 32768;
/// What one search may cost, so that no malicious file holds the reader up: about 0.2 s.
constexpr int64_t kSearchBytes = 64 << 20;

} // namespace

FlacScanner::FlacScanner(const InputFile& file, const FlacStreamInfo& info, int64_t begin,
                         int64_t end, std::function<bool()> stop)
    : file_(file)
    , info_(info)
    , begin_(begin)
    , end_(end)
    , stop_(std::move(stop))
    , window_(kWindowBytes) {
    like_.sampleRate = info.sampleRate;
    like_.channels = info.channels;
    learnNumbering();
}

// Frames are numbered by sample in streams of variable blocks and one by one in the others, and old
// encoders set the flag that tells the two apart wrongly. The second frame's number does not lie.
void FlacScanner::learnNumbering() {
    if (const auto header = headerAt(begin_)) {
        like_ = *header;
        firstNumber_ = header->number; // not 0 in a stream cut out of a longer one
    }
    effort_ = kSearchBytes;
    const auto first = find(begin_, end_);
    if (!first) {
        return;
    }
    first_ = *first;
    const auto header = headerAt(first_.offset);
    const auto next = headerAt(first_.nextOffset());
    if (!header) {
        return;
    }
    if (like_.blockFrames == 0) {
        like_ = *header;
    }
    const int64_t step = next ? next->number - header->number : 0;
    samplesNumbered_ = step == 1                     ? false
                       : step == header->blockFrames ? true
                                                     : header->variableBlocks;
    first_.start = startOf(*header);
}

std::span<const std::byte> FlacScanner::bytesAt(int64_t offset, std::size_t count) {
    const auto wanted = static_cast<std::size_t>(
        std::clamp<int64_t>(end_ - offset, 0, static_cast<int64_t>(count)));
    if (offset < windowOffset_ || offset + static_cast<int64_t>(wanted) >
                                      windowOffset_ + static_cast<int64_t>(windowBytes_)) {
        const auto inside =
            static_cast<std::size_t>(std::clamp<int64_t>(end_ - offset, 0, kWindowBytes));
        windowOffset_ = offset;
        windowBytes_ = file_.readAt(offset, std::span(window_).first(inside));
    }
    const auto at = static_cast<std::size_t>(offset - windowOffset_);
    return std::span<const std::byte>(window_)
        .first(windowBytes_)
        .subspan(std::min(at, windowBytes_));
}

std::optional<FlacFrameHeader> FlacScanner::headerAt(int64_t offset) {
    return FlacFrameHeader::parse(bytesAt(offset, FlacFrameHeader::kMaxBytes), info_);
}

bool FlacScanner::belongs(const FlacFrameHeader& header) const {
    return header.sampleRate == like_.sampleRate && header.channels == like_.channels;
}

int64_t FlacScanner::startOf(const FlacFrameHeader& header) const {
    const int64_t number = header.number - firstNumber_;
    return samplesNumbered_ ? number : number * like_.blockFrames;
}

std::optional<int64_t> FlacScanner::endOfFrame(int64_t offset, const FlacFrameHeader& header) {
    const int64_t limit = std::min(end_, offset + header.maxBytes());
    uint16_t crc = 0;
    while (offset < limit && effort_ > 0) {
        const auto bytes = bytesAt(offset, FlacFrameHeader::kMaxBytes);
        if (bytes.empty()) {
            break;
        }
        std::size_t i = 0;
        do {
            crc = flacCrc16(crc, bytes[i++]);
        } while (crc != 0 && i < bytes.size());
        offset += static_cast<int64_t>(i);
        effort_ -= static_cast<int64_t>(i);
        if (crc == 0 && (offset == end_ || headerAt(offset))) {
            return offset;
        }
    }
    return std::nullopt;
}

std::optional<FlacFrame> FlacScanner::proveAt(int64_t offset) {
    const auto header = headerAt(offset);
    if (!header || !belongs(*header)) {
        return std::nullopt;
    }
    const auto end = endOfFrame(offset, *header);
    if (!end) {
        return std::nullopt;
    }
    return FlacFrame{offset, *end - offset, startOf(*header), header->blockFrames};
}

std::optional<FlacFrame> FlacScanner::find(int64_t offset, int64_t limit) {
    while (offset < limit && effort_ > 0 && !stop_()) {
        const auto bytes = bytesAt(offset, FlacFrameHeader::kMaxBytes);
        if (bytes.empty()) {
            break;
        }
        const void* sync = std::memchr(bytes.data(), 0xFF, bytes.size());
        const auto skipped = sync == nullptr ? static_cast<std::ptrdiff_t>(bytes.size())
                                             : static_cast<const std::byte*>(sync) - bytes.data();
        offset += skipped;
        effort_ -= skipped;
        if (sync == nullptr || offset >= limit) {
            continue;
        }
        if (const auto frame = proveAt(offset)) {
            return frame;
        }
        ++offset;
    }
    return std::nullopt;
}

std::optional<FlacFrame> FlacScanner::frameFrom(int64_t offset) {
    effort_ = kSearchBytes;
    return find(offset, end_);
}

FlacFrame FlacScanner::frameBefore(int64_t sample, int64_t length) {
    effort_ = kSearchBytes;
    FlacFrame low = first_;
    int64_t highOffset = end_; // no frame from here on is looked for
    int64_t highStart = std::max(length, sample + 1);
    for (bool interpolate = true; highOffset - low.nextOffset() > kWalkBytes && low.end() <= sample;
         interpolate = !interpolate) {
        const int64_t from = low.nextOffset();
        const int64_t span = highOffset - from;
        const double share = static_cast<double>(sample - low.end()) /
                             static_cast<double>(std::max<int64_t>(1, highStart - low.end()));
        // Aimed a little early, so that the walk to the frame is forward; every other time the
        // middle, so that uneven files do not make the steps tiny.
        const int64_t aim = static_cast<int64_t>(share * static_cast<double>(span)) - low.bytes;
        const int64_t guess =
            from + (interpolate ? std::clamp<int64_t>(aim, 0, span - 1) : span / 2);
        const auto frame = find(guess, highOffset);
        if (frame && frame->start <= sample && frame->start >= low.end()) {
            low = *frame;
        } else {
            highOffset = guess;
            highStart = frame && frame->start > sample ? frame->start : highStart;
        }
    }
    while (low.end() <= sample) {
        const auto next = find(low.nextOffset(), highOffset);
        if (!next || next->start > sample || next->start < low.end()) {
            break;
        }
        low = *next;
    }
    return low;
}

FlacFrame FlacScanner::last() {
    static constexpr std::array<int64_t, 3> kTails{64 << 10, 1 << 20, 16 << 20};
    FlacFrame last = first_;
    for (const int64_t tail : kTails) {
        effort_ = kSearchBytes;
        auto frame = find(std::max(begin_, end_ - tail), end_);
        if (!frame) {
            continue;
        }
        for (; frame; frame = find(frame->nextOffset(), end_)) {
            last = *frame;
        }
        break;
    }
    return last;
}

} // namespace quorel
