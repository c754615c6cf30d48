#include "audio/decode/MpegFrame.h"
#include "audio/decode/MpegInfoTag.h"
#include "support/AudioFixtures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <random>

namespace quorel::test {

namespace {

namespace fs = std::filesystem;
using Command = std::vector<std::string>;

constexpr int64_t kFrames = 330001;

std::string id3v2(std::size_t bytes) {
    std::string tag("ID3\4\0\0\0\0", 8);
    tag += static_cast<char>(bytes >> 7);
    tag += static_cast<char>(bytes & 0x7F);
    return tag.append(bytes, '\xFF');
}
// False headers of several kinds, and a true one with nothing behind it.
std::string junk() {
    std::string bytes = "junk \xFF\xFB\x90\x64 more \xFF\xF1\x50\x80\x01\x7F\xFC";
    return bytes.append(3000, '\xFF').append(700, 'x');
}
std::string apeTag() {
    return "APETAGEX" + std::string("\xD0\7\0\0\x20\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0", 24);
}

std::string unchanged(const std::string& bytes) {
    return bytes;
}
std::string behindTags(const std::string& bytes) {
    return id3v2(300) + id3v2(5) + std::string(777, '\0') + id3v2(2000) + std::string(900, '\0') +
           bytes;
}
std::string behindJunk(const std::string& bytes) {
    return std::string(50000, '\0') + junk() + bytes;
}
std::string beforeTags(const std::string& bytes) {
    return bytes + std::string(5000, '\0') + apeTag() + "TAG" + std::string(125, ' ') + "TAG" +
           std::string(125, '\xFF');
}

// Encoders get the made sound as in.wav and are to write `out`; empty: length as ffmpeg decodes it.
struct MpegCase {
    const char* name;
    int channels;
    std::optional<int64_t> length;
    Command encoder;
    std::string (*change)(const std::string& bytes) = unchanged;
};

std::ostream& operator<<(std::ostream& out, const MpegCase& mpeg) {
    return out << mpeg.name;
}

const Command kCbr{"lame", "--quiet", "-b", "128", "--cbr"};
const Command kVbr{"lame", "--quiet", "-V2"};
const Command kUntagged{"lame", "--quiet", "-V2", "-t"};
const Command kAac{"ffmpeg", "-c:a", "aac", "-aac_pns", "0", "-f", "adts"};

const MpegCase kCases[] = {
    {"constant rate", 2, kFrames, kCbr},
    {"variable rate", 2, kFrames, kVbr},
    {"average rate", 1, kFrames, {"lame", "--quiet", "--abr", "160"}},
    {"320 kbit per s", 2, kFrames, {"lame", "--quiet", "-b", "320", "--cbr"}},
    {"joint stereo", 2, {}, {"lame", "--quiet", "-b", "32", "--resample", "44.1", "-m", "j"}},
    {"checksums", 2, kFrames, {"lame", "--quiet", "-p"}},
    {"low rate", 1, {}, {"lame", "--quiet", "-t", "-b", "8", "--resample", "24"}},
    {"mpeg 2.5", 1, {}, {"lame", "--quiet", "-t", "-b", "16", "--resample", "11.025"}},
    {"untagged", 2, {}, kUntagged},
    {"layer 2", 2, {}, {"ffmpeg", "-c:a", "mp2", "-f", "mp2"}},
    {"behind tags", 2, kFrames, kVbr, behindTags},
    {"behind junk", 2, kFrames, kVbr, behindJunk},
    {"before tags", 2, kFrames, kVbr, beforeTags},
    {"aac", 2, {}, kAac},
    {"aac mono behind tags", 1, {}, kAac, behindTags},
    {"aac behind junk", 2, {}, kAac, behindJunk},
    {"aac 5.1", 6, {}, kAac},
};

class MpegTest : public testing::Test {
  protected:
    // The sound encoded; empty, and the test skipped, where the encoder is missing.
    std::string encoded(int channels, const Command& encoder, int sampleRate = 44100) {
        const std::string in =
            folder.write("in.wav", wavBytes(TestSound(kFrames, channels, 16),
                                            WavRecipe{.sampleRate = sampleRate}));
        const std::string out = folder.path("out");
        Command command = encoder;
        if (encoder.front() == "lame") {
            command.insert(command.end(), {in, out});
        } else {
            command.insert(command.begin() + 1, {"-nostdin", "-v", "error", "-y", "-i", in});
            command.insert(command.end(), {"-bitexact", out});
        }
        if (!runTool(command)) {
            [&] { GTEST_SKIP() << encoder.front() << " is not installed"; }();
            return {};
        }
        return readFile(out);
    }

    std::unique_ptr<AudioFile> opened(const std::string& bytes) const {
        auto [file, error] = AudioFile::open(folder.write("file", bytes));
        EXPECT_EQ(error, "");
        return std::move(file);
    }

    TemporaryFolder folder;
};

class MpegCases : public MpegTest, public testing::WithParamInterface<MpegCase> {};

TEST_P(MpegCases, HasItsLengthAndSeeksExactly) {
    const MpegCase& mpeg = GetParam();
    const std::string bytes = encoded(mpeg.channels, mpeg.encoder);
    if (bytes.empty()) {
        return;
    }
    int64_t length = mpeg.length.value_or(0);
    if (!mpeg.length) {
        const std::string raw = folder.path("raw");
        if (!runTool({"ffmpeg", "-nostdin", "-v", "error", "-y", "-i", folder.path("out"), "-f",
                      "f32le", raw})) {
            GTEST_SKIP() << "ffmpeg is not installed";
        }
        length = static_cast<int64_t>(fs::file_size(raw)) / 4 / mpeg.channels;
    }
    const auto file = opened(mpeg.change(bytes));
    ASSERT_TRUE(file);
    ASSERT_EQ(file->channels(), mpeg.channels);
    ASSERT_EQ(file->length(), length);
    const double seconds = static_cast<double>(length) / file->sampleRate();
    EXPECT_NEAR(file->dataRate(), 8.0 * static_cast<double>(bytes.size()) / seconds,
                0.02 * file->dataRate());

    const std::vector<float> linear = readAll(*file);
    ASSERT_EQ(linear.size(), static_cast<std::size_t>(length * mpeg.channels));
    std::minstd_rand random(3);
    for (int i = 0; i < 30; ++i) {
        // The first ones near the start, where the way to the target is short.
        const int64_t target =
            static_cast<int64_t>(random()) % (i < 8 ? 600 * (i + 1) : length - 3000);
        ASSERT_TRUE(file->seek(target));
        const std::vector<float> got = readAll(*file, 3000);
        ASSERT_EQ(got.size(), static_cast<std::size_t>(3000 * mpeg.channels));
        ASSERT_TRUE(std::equal(got.begin(), got.end(), linear.begin() + target * mpeg.channels))
            << "at frame " << target;
    }
}

INSTANTIATE_TEST_SUITE_P(, MpegCases, testing::ValuesIn(kCases));

// How alike the sound and what came out are, the latter `lag` frames later; 1 is the same.
double likeness(const std::vector<float>& sound, const std::vector<float>& got, std::size_t lag) {
    double product = 0;
    double power = 0;
    for (std::size_t i = 1000; i < 100000; ++i) {
        product += static_cast<double>(sound[i]) * static_cast<double>(got[i + 2 * lag]);
        power += std::pow(static_cast<double>(sound[i]), 2);
    }
    return product / power;
}

TEST_F(MpegTest, StartsWithTheSoundsFirstFrame) {
    const std::string bytes = encoded(2, {"lame", "--quiet", "-b", "320", "--cbr"});
    if (bytes.empty()) {
        return;
    }
    const std::vector<float> sound = TestSound(kFrames, 2, 16).asFloat();
    const auto file = opened(bytes);
    ASSERT_TRUE(file);
    const std::vector<float> got = readAll(*file);
    EXPECT_GT(likeness(sound, got, 0), 0.8);
    EXPECT_LT(likeness(sound, got, 1), 0.2);
}

TEST_F(MpegTest, PlaysWhatDamagedFilesHold) {
    const std::string bytes = encoded(2, kCbr);
    if (bytes.empty()) {
        return;
    }
    constexpr int64_t kOrigin = 576 + 529;
    constexpr int64_t kPacket = 1152;
    const auto whole = opened(bytes);
    ASSERT_TRUE(whole);
    const std::vector<float> linear = readAll(*whole);

    const auto cut = opened(bytes.substr(0, bytes.size() * 6 / 10));
    ASSERT_TRUE(cut);
    EXPECT_EQ((cut->length() + kOrigin) % kPacket, 0);
    EXPECT_NEAR(static_cast<double>(cut->length()), 0.6 * kFrames, 2 * kPacket);
    const std::vector<float> start = readAll(*cut);
    ASSERT_EQ(start.size(), static_cast<std::size_t>(2 * cut->length()));
    EXPECT_TRUE(std::equal(start.begin(), start.end(), linear.begin()));

    // Junk inside a frame, longer than what is read at once: that frame is lost, no other.
    std::string torn = bytes;
    torn.insert(bytes.size() / 2, std::string(200000, 'x') + junk());
    const auto holed = opened(torn);
    ASSERT_TRUE(holed);
    const std::vector<float> rest = readAll(*holed);
    EXPECT_NEAR(static_cast<double>(holed->length()), kFrames, 2 * kPacket);
    ASSERT_EQ(rest.size(), static_cast<std::size_t>(2 * holed->length()));
    EXPECT_TRUE(std::equal(rest.begin(), rest.begin() + 300000, linear.begin()));
    // The padding is part of a damaged file, so its end lies that much later.
    const std::vector<float> tail(linear.end() - 200000, linear.end());
    EXPECT_NE(std::search(rest.end() - 210000, rest.end(), tail.begin(), tail.end()), rest.end());

    const auto twice = opened(bytes + id3v2(500) + bytes);
    ASSERT_TRUE(twice);
    EXPECT_EQ((twice->length() + kOrigin) % kPacket, 0);
    EXPECT_NEAR(static_cast<double>(twice->length()), 2.0 * kFrames, 4 * kPacket);
    EXPECT_EQ(readAll(*twice).size(), static_cast<std::size_t>(2 * twice->length()));
}

TEST_F(MpegTest, EndsWhereAnotherFormatBegins) {
    const std::string first = encoded(2, kUntagged);
    const std::string second = encoded(2, kUntagged, 48000);
    if (first.empty() || second.empty()) {
        return;
    }
    const auto alone = opened(first);
    const auto both = opened(first + second);
    ASSERT_TRUE(alone && both);
    EXPECT_EQ(both->sampleRate(), 44100);
    EXPECT_EQ(both->length(), alone->length());
}

TEST_F(MpegTest, RefusesAtOnceWhatOnlyLooksLikeFrames) {
    std::minstd_rand random(5);
    std::string noise;
    for (int i = 0; i < 3'000'000; ++i) {
        noise += static_cast<char>(random() >> 8);
    }
    const struct {
        const char* name;
        std::string bytes;
        uintmax_t size; // grown to, with zeros
    } cases[] = {
        {"noise", noise, 100'000'000},
        {"zeros", "", 100'000'000},
        {"sync everywhere", std::string(3'000'000, '\xFF'), 100'000'000},
        {"playlist", "#EXTM3U\nhttp://localhost/a.mp3\n", 31},
        {"a lone header", "\xFF\xFB\x90\x64" + std::string(4000, '\0'), 4004},
        {"headers that chain to nothing", junk() + junk(), 8000},
        {"an endless tag", "ID3\4" + std::string(2, '\0') + "\x7F\x7F\x7F\x7F", 4000},
    };
    for (const auto& refused : cases) {
        const std::string path = folder.write("refused.mp3", refused.bytes);
        fs::resize_file(path, refused.size);
        const auto start = std::chrono::steady_clock::now();
        const auto opened = AudioFile::open(path);
        EXPECT_FALSE(opened.file) << refused.name;
        EXPECT_THAT(opened.error, testing::HasSubstr("known format")) << refused.name;
        EXPECT_LT(std::chrono::steady_clock::now() - start,
                  kPatience * std::chrono::milliseconds(250))
            << refused.name;
    }
}

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
