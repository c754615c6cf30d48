#include "audio/decode/AudioTags.h"

#include "audio/decode/Bytes.h"

#include <algorithm>
#include <array>

namespace quorel {

namespace {
constexpr int64_t kId3v1Bytes = 128;
constexpr int64_t kApeFooterBytes = 32;

// Length of the ID3v2 tag at `offset`, its header and footer included; 0 where there is none.
int64_t id3v2Bytes(const InputFile& file, int64_t offset) {
    std::array<std::byte, 10> header{};
    if (file.readAt(offset, header) != header.size() || !startsWith(header, "ID3")) {
        return 0;
    }
    int64_t bytes = 0;
    for (std::size_t i = 6; i < header.size(); ++i) {
        const auto digit = std::to_integer<int64_t>(header[i]);
        if (digit > 0x7F) {
            return 0; // sizes are written in seven bits a byte
        }
        bytes = bytes << 7 | digit;
    }
    const bool footer = (std::to_integer<int>(header[5]) & 0x10) != 0;
    return bytes + (footer ? 20 : 10);
}

// The first byte that is not zero, of the next few: taggers leave room for longer tags. Only where
// another tag begins may the zeros be skipped, as some formats begin with zeros of their own.
int64_t behindZeros(const InputFile& file, int64_t offset) {
    std::array<std::byte, 16384> bytes{};
    const std::size_t got = file.readAt(offset, bytes);
    const auto end = bytes.begin() + static_cast<std::ptrdiff_t>(got);
    return offset +
           (std::find_if(bytes.begin(), end, [](std::byte b) { return b != std::byte{}; }) -
            bytes.begin());
}

bool hasText(const InputFile& file, int64_t offset, std::string_view text) {
    std::array<std::byte, 8> bytes{};
    return offset >= 0 && file.readAt(offset, bytes) == bytes.size() && startsWith(bytes, text);
}

// Length of the APE tag that ends at `end`; 0 where there is none.
int64_t apeBytes(const InputFile& file, int64_t end) {
    std::array<std::byte, kApeFooterBytes> footer{};
    const int64_t start = end - kApeFooterBytes;
    if (start < 0 || file.readAt(start, footer) != footer.size() ||
        !startsWith(footer, "APETAGEX")) {
        return 0;
    }
    const auto bytes = // of the items and the footer
        static_cast<int64_t>(loadUnsigned(footer.data() + 12, 4, std::endian::little));
    const bool header = hasText(file, end - bytes - kApeFooterBytes, "APETAGEX");
    return std::max(bytes, kApeFooterBytes) + (header ? kApeFooterBytes : 0);
}
} // namespace

int64_t endOfLeadingTags(const InputFile& file) {
    int64_t offset = 0;
    int64_t next = 0;
    while (const int64_t bytes = id3v2Bytes(file, next)) {
        offset = next + bytes;
        next = behindZeros(file, offset);
    }
    return std::min(offset, file.size());
}

int64_t startOfTrailingTags(const InputFile& file, int64_t begin) {
    int64_t end = file.size();
    for (;;) {
        const bool id3v1 = hasText(file, end - kId3v1Bytes, "TAG");
        const int64_t bytes = id3v1 ? kId3v1Bytes : apeBytes(file, end);
        if (bytes == 0 || end - bytes < begin) {
            return end;
        }
        end -= bytes;
    }
}

} // namespace quorel
