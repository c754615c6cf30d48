#include "media/tags/TagLibStream.h"

#include <algorithm>
#include <cstring>

namespace quorel {

TagLib::ByteVector TagLibStream::readBlock(unsigned long length) {
    const int64_t left = std::max<int64_t>(0, this->length() - position_);
    const auto wanted =
        static_cast<unsigned>(std::min<uint64_t>(length, static_cast<uint64_t>(left)));
    --callsLeft_;
    bytesLeft_ -= wanted;
    TagLib::ByteVector block(wanted, '\0');
    const auto bytes = std::as_writable_bytes(std::span(block.data(), block.size()));
    const int64_t offset = begin_ + position_;
    const std::size_t got =
        bytes.size() < window_.size() ? readSmall(offset, bytes) : file_.readAt(offset, bytes);
    block.resize(static_cast<unsigned>(got));
    position_ += static_cast<int64_t>(got);
    return block;
}

std::size_t TagLibStream::readSmall(int64_t offset, std::span<std::byte> bytes) {
    const auto end = offset + static_cast<int64_t>(bytes.size());
    if (offset < windowBegin_ || end > windowBegin_ + windowBytes_) {
        windowBegin_ = offset;
        windowBytes_ = static_cast<int64_t>(file_.readAt(offset, window_));
    }
    const auto got = std::min<std::size_t>(bytes.size(), static_cast<std::size_t>(windowBytes_));
    std::copy_n(window_.begin() + (offset - windowBegin_), got, bytes.begin());
    return got;
}

void TagLibStream::seek(long offset, Position from) {
    const int64_t base = from == Beginning ? 0 : from == Current ? position_ : length();
    position_ = std::max<int64_t>(0, base + offset);
}

} // namespace quorel
