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
    // Sampling rate, channels, bytes, frames, bytes of main data.
    using Told = std::tuple<int, int, int, int, int>;
    const std::pair<std::array<int, 7>, std::optional<Told>> cases[] = {
        {{0xFF, 0xFB, 0x90, 0x64}, Told{44100, 2, 417, 1152, 381}},
        {{0xFF, 0xFB, 0x92, 0x64}, Told{44100, 2, 418, 1152, 382}},
        {{0xFF, 0xFA, 0x90, 0xC4}, Told{44100, 1, 417, 1152, 394}}, // checksum
        {{0xFF, 0xF3, 0x14, 0xC4}, Told{24000, 1, 24, 576, 11}},
        {{0xFF, 0xE3, 0x18, 0xC4}, Told{8000, 1, 72, 576, 59}},
        {{0xFF, 0xFD, 0xE4, 0x04}, Told{48000, 2, 1152, 1152, 0}}, // layer 2
        {{0xFF, 0xFF, 0xE6, 0x04}, Told{48000, 2, 452, 384, 0}},   // layer 1
        {{0xFF, 0xF7, 0xE4, 0x04}, Told{24000, 2, 512, 384, 0}},   // of MPEG 2
        {{0xFF, 0xF1, 0x50, 0x80, 0x2E, 0x7F, 0xFC}, Told{44100, 2, 371, 1024, 0}},
        {{0xFF, 0xF1, 0x50, 0x80, 0x2E, 0x7F, 0xFD}, {}}, // two blocks
        {{0xFF, 0xF1, 0x50, 0x80, 0x00, 0xFF, 0xFC}, {}}, // shorter than its header
        {{0xFF, 0xF1, 0x7C, 0x80, 0x2E, 0x7F, 0xFC}, {}}, // rate 15
        {{0xFF, 0xFB, 0x00, 0x64}, {}},                   // free format
        {{0xFF, 0xFB, 0xF0, 0x64}, {}},
        {{0xFF, 0xFB, 0x9C, 0x64}, {}},
        {{0xFF, 0xEB, 0x90, 0x64}, {}}, // reserved version
        {{0xFF, 0xDB, 0x90, 0x64}, {}},
    };
    for (const auto& [header, expected] : cases) {
        std::array<std::byte, 7> bytes{};
        std::transform(header.begin(), header.end(), bytes.begin(),
                       [](int value) { return static_cast<std::byte>(value); });
        std::optional<Told> told;
        if (const auto frame = MpegFrame::parse(bytes)) {
            told.emplace(frame->sampleRate, frame->channels, frame->bytes, frame->frames,
                         frame->mainDataBytes);
        }
        EXPECT_EQ(told, expected) << testing::PrintToString(header);
    }
}

TEST(MpegInfoTag, ReadsWhatEncodersSay) {
    using namespace std::string_literals;
    const std::string head = "\xFF\xFB\x90\x64"s + std::string(32, '\0');
    const std::string lame = "LAME3.100" + std::string(12, '\0') + "\x24\x05\x38";
    const std::string count = "\0\0\1\x1F"s;
    using Told = std::tuple<int64_t, int, int, int64_t>; // count, delay, padding, bytes
    const std::pair<std::string, std::optional<Told>> cases[] = {
        {"Xing" + "\0\0\0\x0F"s + count + std::string(108, '\0') + lame, Told{287, 576, 1336, 0}},
        {"Info" + "\0\0\0\1"s + count + lame, Told{287, 576, 1336, 0}},
        {"Info" + "\0\0\0\1"s + count + "Other" + lame.substr(5), Told{287, 0, 0, 0}},
        {"Xing" + "\0\0\0\0"s + lame, Told{0, 576, 1336, 0}},
        {"VBRI" + std::string("\0\1\x0D\xB1\0\x4B\0\1\2\3", 10) + count, Told{287, 0, 0, 0x10203}},
        {"Xyng" + lame, {}},
    };
    for (const auto& [tag, expected] : cases) {
        std::string packet = head + tag;
        packet.resize(417);
        const auto bytes = std::as_bytes(std::span(packet));
        std::optional<Told> told;
        if (const auto read = MpegInfoTag::read(bytes, *MpegFrame::parse(bytes)))
            told.emplace(read->count, read->delay, read->padding, read->bytes);
        EXPECT_EQ(told, expected) << tag;
    }
}

} // namespace

} // namespace quorel::test
