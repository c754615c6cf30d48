#pragma once

#include <zlib.h>

#include <string>

namespace quorel::test {

using namespace std::string_literals;

inline std::string bigEndian(std::size_t number, int bytes, int bits = 8) {
    std::string text;
    for (int i = bytes - 1; i >= 0; --i)
        text += static_cast<char>(number >> bits * i & ((1U << bits) - 1));
    return text;
}

inline std::string syncsafe(std::size_t number) {
    return bigEndian(number, 4, 7);
}

/// A tag of any version around frames that are built already. `stated` is the size in its head.
inline std::string id3Tag(int version, const std::string& frames, int flags = 0,
                          std::size_t stated = SIZE_MAX) {
    return "ID3"s + static_cast<char>(version) + '\0' + static_cast<char>(flags) +
           syncsafe(stated == SIZE_MAX ? frames.size() : stated) + frames;
}

inline std::string frame2(const std::string& id, const std::string& content) {
    return id + bigEndian(content.size(), 3) + content;
}
inline std::string frame3(const std::string& id, const std::string& content, int flags = 0) {
    return id + bigEndian(content.size(), 4) + '\0' + static_cast<char>(flags) + content;
}
inline std::string frame4(const std::string& id, const std::string& content, int flags = 0) {
    return id + syncsafe(content.size()) + '\0' + static_cast<char>(flags) + content;
}

inline std::string unsynchronised(const std::string& bytes) {
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        text += bytes[i];
        const bool follows =
            i + 1 < bytes.size() &&
            (bytes[i + 1] == '\0' || static_cast<unsigned char>(bytes[i + 1]) >= 0xE0);
        if (bytes[i] == '\xFF' && (follows || i + 1 == bytes.size()))
            text += '\0';
    }
    return text;
}

inline std::string deflated(const std::string& bytes) {
    uLongf size = ::compressBound(bytes.size());
    std::string packed(size, '\0');
    ::compress(reinterpret_cast<Bytef*>(packed.data()), &size,
               reinterpret_cast<const Bytef*>(bytes.data()), bytes.size());
    packed.resize(size);
    return packed;
}

/// A chunk of AIFF.
inline std::string iffChunk(const std::string& name, const std::string& content) {
    return name + bigEndian(content.size(), 4) + content + std::string(content.size() & 1, '\0');
}

} // namespace quorel::test
