#include "audio/decode/MpegFrame.h"
#include "audio/decode/MpegInfoTag.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <string>

namespace quorel::test {

namespace {

TEST(MpegFrame, ReadsHeaders) {
    const struct {
        std::array<int, 7> header;
        int sampleRate, channels, bytes, frames, mainData; // 0 Hz: no header
    } cases[] = {
        {{0xFF, 0xFB, 0x90, 0x64}, 44100, 2, 417, 1152, 381},
        {{0xFF, 0xFB, 0x92, 0x64}, 44100, 2, 418, 1152, 382},
        {{0xFF, 0xFA, 0x90, 0xC4}, 44100, 1, 417, 1152, 394}, // checksum
        {{0xFF, 0xF3, 0x14, 0xC4}, 24000, 1, 24, 576, 11},
        {{0xFF, 0xE3, 0x18, 0xC4}, 8000, 1, 72, 576, 59},
        {{0xFF, 0xFD, 0xE4, 0x04}, 48000, 2, 1152, 1152, 0}, // layer 2
        {{0xFF, 0xFF, 0xE6, 0x04}, 48000, 2, 452, 384, 0},   // layer 1
        {{0xFF, 0xF7, 0xE4, 0x04}, 24000, 2, 512, 384, 0},   // of MPEG 2
        {{0xFF, 0xF1, 0x50, 0x80, 0x2E, 0x7F, 0xFC}, 44100, 2, 371, 1024, 0},
        {{0xFF, 0xF1, 0x50, 0x80, 0x2E, 0x7F, 0xFD}, 0, 0, 0, 0, 0}, // two blocks
        {{0xFF, 0xF1, 0x50, 0x80, 0x00, 0xFF, 0xFC}, 0, 0, 0, 0, 0}, // shorter than its header
        {{0xFF, 0xF1, 0x7C, 0x80, 0x2E, 0x7F, 0xFC}, 0, 0, 0, 0, 0}, // rate 15
        {{0xFF, 0xFB, 0x00, 0x64}, 0, 0, 0, 0, 0},                   // free format
        {{0xFF, 0xFB, 0xF0, 0x64}, 0, 0, 0, 0, 0},
        {{0xFF, 0xFB, 0x9C, 0x64}, 0, 0, 0, 0, 0},
        {{0xFF, 0xEB, 0x90, 0x64}, 0, 0, 0, 0, 0}, // reserved version
        {{0xFF, 0xDB, 0x90, 0x64}, 0, 0, 0, 0, 0},
    };
    for (const auto& expected : cases) {
        std::array<std::byte, 7> bytes{};
        std::transform(expected.header.begin(), expected.header.end(), bytes.begin(),
                       [](int value) { return static_cast<std::byte>(value); });
        SCOPED_TRACE(testing::PrintToString(expected.header));
        const auto frame = MpegFrame::parse(bytes);
        ASSERT_EQ(frame.has_value(), expected.sampleRate != 0);
        if (frame) {
            EXPECT_EQ(frame->sampleRate, expected.sampleRate);
            EXPECT_EQ(frame->channels, expected.channels);
            EXPECT_EQ(frame->bytes, expected.bytes);
            EXPECT_EQ(frame->frames, expected.frames);
            EXPECT_EQ(frame->mainDataBytes, expected.mainData);
        }
    }
}

TEST(MpegInfoTag, ReadsWhatEncodersSay) {
    const std::string head("\xFF\xFB\x90\x64", 4);
    const std::string side(32, '\0');
    const std::string lame = "LAME3.100" + std::string(12, '\0') + "\x24\x05\x38";
    const auto count = std::string("\0\0\1\x1F", 4);
    const struct {
        std::string bytes;
        std::optional<MpegInfoTag> tag;
    } cases[] = {
        {"Xing" + std::string("\0\0\0\x0F", 4) + count + std::string(108, '\0') + lame,
         MpegInfoTag{287, 576, 1336}},
        {"Info" + std::string("\0\0\0\1", 4) + count + lame, MpegInfoTag{287, 576, 1336}},
        {"Info" + std::string("\0\0\0\1", 4) + count + "Other" + lame.substr(5),
         MpegInfoTag{287, 0, 0}},
        {"Xing" + std::string("\0\0\0\0", 4) + lame, MpegInfoTag{0, 576, 1336}},
        {"VBRI" + std::string("\0\1\x0D\xB1\0\x4B\0\1\2\3", 10) + count,
         MpegInfoTag{287, 0, 0, 0x10203}},
        {"Xyng" + lame, std::nullopt},
    };
    for (const auto& expected : cases) {
        std::string packet = head + side + expected.bytes;
        packet.resize(417);
        const auto bytes = std::as_bytes(std::span(packet));
        const auto tag = MpegInfoTag::read(bytes, *MpegFrame::parse(bytes));
        ASSERT_EQ(tag.has_value(), expected.tag.has_value()) << expected.bytes;
        if (tag) {
            EXPECT_EQ(tag->count, expected.tag->count);
            EXPECT_EQ(tag->delay, expected.tag->delay);
            EXPECT_EQ(tag->padding, expected.tag->padding);
            EXPECT_EQ(tag->bytes, expected.tag->bytes);
        }
    }
}

} // namespace

} // namespace quorel::test
