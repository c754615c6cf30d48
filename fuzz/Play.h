#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string_view>

namespace quorel::fuzz {

/// Bytes that a file has at a place, so that the wanted reader takes it.
struct Mark {
    std::size_t place;
    std::string_view bytes;
};

/// Opens the bytes with the marks set, as a file in memory, and plays and seeks in it. Aborts
/// where AudioFile breaks its word.
void play(const uint8_t* data, std::size_t size, std::initializer_list<Mark> marks);

} // namespace quorel::fuzz
