#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>

namespace quorel {

/// The unsigned number in the first `bytes` (1..8) bytes at `at`.
inline uint64_t loadUnsigned(const std::byte* at, int bytes, std::endian order) {
    uint64_t value = 0;
    for (int i = 0; i < bytes; ++i) {
        const int place = order == std::endian::big ? i : bytes - 1 - i;
        value = value << 8 | std::to_integer<uint64_t>(at[place]);
    }
    return value;
}

/// Whether `data` starts with these characters.
inline bool startsWith(std::span<const std::byte> data, std::string_view text) {
    return data.size() >= text.size() && std::memcmp(data.data(), text.data(), text.size()) == 0;
}

} // namespace quorel
