#include "audio/decode/FlacMetadata.h"

#include "audio/decode/Bytes.h"

#include <algorithm>
#include <charconv>
#include <vector>

namespace quorel {

namespace {

enum BlockType : unsigned { StreamInfo = 0, VorbisComment = 4, Invalid = 127 };

constexpr int64_t kMaxCommentBytes = 1 << 20; // more is lyrics and pictures, not worth the reading

uint32_t maskOf(std::string_view comment) {
    static constexpr std::string_view kName = "WAVEFORMATEXTENSIBLE_CHANNEL_MASK=0x";
    const auto upper = [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; };
    const auto sameLetter = [&](char a, char b) { return upper(a) == upper(b); };
    if (comment.size() <= kName.size() ||
        !std::equal(kName.begin(), kName.end(), comment.begin(), sameLetter)) {
        return 0;
    }
    uint32_t mask = 0;
    std::from_chars(comment.data() + kName.size(), comment.data() + comment.size(), mask, 16);
    return mask;
}

// Looks through the comments of a VORBIS_COMMENT block: vendor, count, comments, each with its
// length in front.
uint32_t channelMaskIn(std::span<const std::byte> block) {
    std::size_t at = 0;
    const auto takeNumber = [&]() -> std::size_t {
        if (block.size() - at < 4) {
            at = block.size();
            return 0;
        }
        at += 4;
        return loadUnsigned(block.data() + at - 4, 4, std::endian::little);
    };
    const auto takeText = [&] {
        const std::size_t length = takeNumber();
        const auto text = block.subspan(at, std::min(length, block.size() - at));
        at += text.size();
        return std::string(reinterpret_cast<const char*>(text.data()), text.size());
    };
    takeText();
    takeNumber();
    while (at < block.size()) {
        if (const uint32_t mask = maskOf(takeText())) {
            return mask;
        }
    }
    return 0;
}

} // namespace

std::optional<FlacMetadata> FlacMetadata::read(const AudioSource& source) {
    FlacMetadata metadata;
    int64_t offset = source.begin + 4;
    for (bool last = false; !last;) {
        std::array<std::byte, 4> header{};
        if (source.file.readAt(offset, header) != header.size()) {
            break;
        }
        const auto type = std::to_integer<unsigned>(header[0]) & 0x7FU;
        const auto bytes =
            static_cast<int64_t>(loadUnsigned(header.data() + 1, 3, std::endian::big));
        if (type == Invalid) {
            break; // not a block: a length before it was wrong, or the frames start here
        }
        last = (std::to_integer<unsigned>(header[0]) & 0x80U) != 0;
        offset += 4;
        if (type == StreamInfo && metadata.infoEnd == 0) {
            std::array<std::byte, FlacStreamInfo::kBytes> block{};
            if (source.file.readAt(offset, block) != block.size()) {
                break;
            }
            metadata.info = FlacStreamInfo::parse(block);
            metadata.infoEnd = offset + static_cast<int64_t>(block.size());
        } else if (type == VorbisComment && bytes <= kMaxCommentBytes) {
            std::vector<std::byte> block(static_cast<std::size_t>(bytes));
            block.resize(source.file.readAt(offset, block));
            metadata.channelMask = channelMaskIn(block);
        }
        offset += bytes;
    }
    metadata.audioBegin = offset;
    return metadata.infoEnd == 0 ? std::nullopt : std::optional(metadata);
}

} // namespace quorel
