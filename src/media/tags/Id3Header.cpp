#include "media/tags/Id3Header.h"

#include "audio/decode/Bytes.h"

#include <array>

namespace quorel {

std::optional<Id3Header> Id3Header::parse(std::span<const std::byte> bytes) {
    if (bytes.size() < kBytes || !startsWith(bytes, "ID3")) {
        return std::nullopt;
    }
    return Id3Header{std::to_integer<int>(bytes[3]), std::to_integer<unsigned>(bytes[5]),
                     loadSyncsafe(bytes.subspan<6, 4>())};
}

std::optional<Id3Header> Id3Header::read(const InputFile& file, int64_t offset) {
    std::array<std::byte, kBytes> bytes{};
    return parse(std::span(bytes).first(file.readAt(offset, bytes)));
}

int64_t Id3Header::tagBytes() const {
    constexpr auto kHeader = static_cast<int64_t>(kBytes);
    return bodyBytes + (hasFooter() ? 2 * kHeader : kHeader);
}

int64_t loadSyncsafe(std::span<const std::byte, 4> bytes) {
    int64_t number = 0;
    for (const std::byte byte : bytes) {
        number = number << 7 | (std::to_integer<int64_t>(byte) & 0x7F);
    }
    return number;
}

bool isSyncsafe(std::span<const std::byte, 4> bytes) {
    return ((bytes[0] | bytes[1] | bytes[2] | bytes[3]) & std::byte{0x80}) == std::byte{};
}

} // namespace quorel
