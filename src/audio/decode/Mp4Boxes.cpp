#include "audio/decode/Mp4Boxes.h"

#include "audio/decode/Bytes.h"

#include <algorithm>
#include <array>

namespace quorel {

std::optional<Mp4Box> Mp4Walk::next() {
    std::array<std::byte, 16> head{};
    const int64_t room = end_ - offset_;
    if (room < 8 || --budget_ < 0) {
        return std::nullopt;
    }
    const std::size_t got = file_.readAt(offset_, head);
    if (got < 8) {
        return std::nullopt;
    }
    int64_t headBytes = 8;
    uint64_t bytes = loadUnsigned(head.data(), 4, std::endian::big);
    if (bytes == 1 && got == head.size()) {
        headBytes = 16;
        bytes = loadUnsigned(head.data() + 8, 8, std::endian::big);
    } else if (bytes == 0) {
        bytes = static_cast<uint64_t>(room); // to the end
    }
    if (bytes < static_cast<uint64_t>(headBytes)) {
        return std::nullopt;
    }
    const auto end = offset_ + static_cast<int64_t>(std::min(bytes, static_cast<uint64_t>(room)));
    const auto name = static_cast<uint32_t>(loadUnsigned(head.data() + 4, 4, std::endian::big));
    const Mp4Box box{name, offset_ + headBytes, std::max(offset_ + headBytes, end)};
    offset_ = end;
    return box;
}

} // namespace quorel
