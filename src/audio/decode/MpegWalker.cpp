#include "audio/decode/MpegWalker.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace quorel {

namespace {
constexpr std::size_t kWindowBytes = 131072;
/// Headers in a row, each where the one before says, that cannot be chance.
constexpr int kChain = 4;
/// How far from a byte its chain may reach.
constexpr std::size_t kChainBytes = kChain * MpegFrame::kMaxBytes;
/// Junk before the first frame; a file with more is of another kind.
constexpr int64_t kMaxJunk = 1 << 20;
} // namespace

MpegWalker::MpegWalker(const AudioSource& source, std::function<bool()> stop)
    : source_(source)
    , stop_(std::move(stop))
    , nextOffset_(source.begin)
    , window_(kWindowBytes) {}

bool MpegWalker::findStream() {
    int64_t offset = source_.begin;
    const auto first = search(offset, std::min(source_.end, offset + kMaxJunk));
    if (first) {
        kind_ = first->kind;
        nextOffset_ = offset;
    }
    return first.has_value();
}

bool MpegWalker::next() {
    int64_t offset = nextOffset_;
    auto header = headerAt(offset);
    if (!header || header->kind != kind_) {
        header = search(offset, source_.end);
    }
    if (!header || header->kind != kind_ || offset + header->bytes > source_.end) {
        return false;
    }
    frame_ = *header;
    offset_ = offset;
    nextOffset_ = offset + header->bytes;
    return true;
}

std::span<const std::byte> MpegWalker::packet() {
    const auto count = static_cast<std::size_t>(frame_.bytes);
    const auto bytes = bytesAt(offset_, count);
    return bytes.first(std::min(bytes.size(), count));
}

// What the file has from a byte on: at least `count` bytes, unless it or the audio ends before.
std::span<const std::byte> MpegWalker::bytesAt(int64_t offset, std::size_t count) {
    const auto left = static_cast<std::size_t>(std::max<int64_t>(0, source_.end - offset));
    const int64_t windowEnd = windowStart_ + static_cast<int64_t>(windowBytes_);
    const int64_t wantedEnd = offset + static_cast<int64_t>(std::min(count, left));
    if (offset < windowStart_ || wantedEnd > windowEnd) {
        windowStart_ = offset;
        windowBytes_ =
            source_.file.readAt(offset, std::span(window_).first(std::min(left, window_.size())));
    }
    const auto skipped = static_cast<std::size_t>(offset - windowStart_);
    return std::span(window_).first(windowBytes_).subspan(std::min(skipped, windowBytes_));
}

std::optional<MpegFrame> MpegWalker::headerAt(int64_t offset) {
    return MpegFrame::parse(bytesAt(offset, MpegFrame::kHeaderBytes));
}

// Whether frames follow the one at `offset`, up to the end of a short stream. A lone frame is
// believed only where nothing stands before it.
bool MpegWalker::isStart(int64_t offset, const MpegFrame& first) {
    int64_t at = offset + first.bytes;
    int count = 1;
    for (; count < kChain && at < source_.end; ++count) {
        const auto header = headerAt(at);
        if (!header || header->kind != first.kind) {
            return false;
        }
        at += header->bytes;
    }
    return count > 1 || (at == source_.end && offset == source_.begin);
}

// The first frame at or behind `offset` and before `limit` that others follow. `offset` then is
// its place.
std::optional<MpegFrame> MpegWalker::search(int64_t& offset, int64_t limit) {
    while (offset < limit && !stop_()) {
        // All that the chains of this piece's bytes can reach is in the window with it.
        const auto bytes = bytesAt(offset, kChainBytes + 1);
        if (bytes.empty()) {
            break;
        }
        const bool last = bytes.size() <= kChainBytes;
        const auto piece = std::min(static_cast<std::size_t>(limit - offset),
                                    last ? bytes.size() : bytes.size() - kChainBytes);
        const std::byte* at = bytes.data();
        const std::byte* const pieceEnd = at + piece;
        const int64_t pieceStart = offset;
        while (at < pieceEnd) {
            const void* sync = std::memchr(at, 0xFF, static_cast<std::size_t>(pieceEnd - at));
            if (sync == nullptr) {
                break;
            }
            at = static_cast<const std::byte*>(sync);
            offset = pieceStart + (at - bytes.data());
            const auto header = headerAt(offset);
            if (header && isStart(offset, *header)) {
                return header;
            }
            ++at;
        }
        offset = pieceStart + static_cast<int64_t>(piece);
    }
    return std::nullopt;
}

} // namespace quorel
