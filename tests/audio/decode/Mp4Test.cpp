#include "audio/decode/EncodedFiles.h"

#include <gmock/gmock.h>

namespace quorel::test {

namespace {

constexpr int64_t kFrames = 100001;
constexpr int64_t kPacket = 1024;

std::string bigEndian(uint64_t value, int bytes) {
    std::string text;
    for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8) {
        text += static_cast<char>(value >> shift & 0xFF);
    }
    return text;
}

std::string box(const std::string& name, const std::string& content) {
    return bigEndian(content.size() + 8, 4) + name + content;
}

// Adds a box at the end of moov, which is the last box of the file.
std::string inMoov(std::string bytes, const std::string& added) {
    const std::size_t name = bytes.find("moov");
    bytes.replace(name - 4, 4, bigEndian(bytes.size() - (name - 4) + added.size(), 4));
    return bytes + added;
}

std::string withGapless(std::string bytes, const std::string& numbers) {
    const std::string zero(4, '\0');
    const std::string item =
        box("----", box("mean", zero + "com.apple.iTunes") + box("name", zero + "iTunSMPB") +
                        box("data", bigEndian(1, 4) + zero + numbers));
    return inMoov(
        std::move(bytes),
        box("udta", box("meta", zero + box("hdlr", std::string(25, '\0')) + box("ilst", item))));
}

std::string asItunes(std::string bytes) { // the delay is there without any edit list
    return withGapless(std::move(bytes), " 00000000 00000400 0000025F 00000000000186A1 00000000");
}
std::string withAbsurdGapless(std::string bytes) {
    return withGapless(std::move(bytes), " 00000000 00000400 00000000 7FFFFFFFFFFFFFFF");
}
// The edit's duration is in milliseconds here: 1 s of 44.1 kHz.
std::string cutByEdit(std::string bytes) {
    const std::size_t edit = bytes.find("elst");
    return bytes.replace(edit + 12, 4, bigEndian(1000, 4));
}

// Counts half frames: clocks need not tick with the sampling rate.
std::string withFastClock(std::string bytes) {
    const auto redouble = [&bytes](std::size_t at) {
        uint64_t value = 0;
        for (std::size_t i = 0; i < 4; ++i) {
            value = value << 8 | static_cast<unsigned char>(bytes.at(at + i));
        }
        bytes.replace(at, 4, bigEndian(2 * value, 4));
    };
    const std::size_t clock = bytes.find("mdhd") + 16;
    redouble(clock);
    redouble(clock + 4); // the duration
    redouble(bytes.find("elst") + 16);
    const std::size_t times = bytes.find("stts") + 8;
    for (int i = 0; i < bytes.at(times + 3); ++i) {
        redouble(times + 8 + 8 * static_cast<std::size_t>(i));
    }
    return bytes;
}

struct Mp4Case {
    const char* name;
    int channels;
    int bits;
    std::vector<std::string> options;
    int64_t frames = kFrames;
    int64_t delay = 0; // of sound that no list cuts off
    std::string (*change)(std::string bytes) = nullptr;
};

std::ostream& operator<<(std::ostream& out, const Mp4Case& mp4) {
    return out << mp4.name;
}

std::vector<std::string> aac(std::vector<std::string> more = {}) {
    std::vector<std::string> options{"-c:a", "aac", "-aac_pns", "0", "-b:a", "256k"};
    options.insert(options.end(), more.begin(), more.end());
    return options;
}
std::vector<std::string> alac(const char* format, std::vector<std::string> more = {}) {
    std::vector<std::string> options{"-c:a", "alac", "-sample_fmt", format};
    options.insert(options.end(), more.begin(), more.end());
    return options;
}
const std::vector<std::string> kNoEdits{"-use_editlist", "0"};
const std::vector<std::string> kFragments{"-movflags", "+frag_keyframe+empty_moov",
                                          "-frag_duration", "500000"};

const Mp4Case kCases[] = {
    {"AAC", 2, 16, aac()},
    {"AAC mono", 1, 16, aac()},
    {"AAC 5.1", 6, 16, aac({"-b:a", "640k"})},
    {"AAC, contents first", 2, 16, aac({"-movflags", "+faststart"})},
    {"AAC without edits", 2, 16, aac(kNoEdits), kFrames + kPacket, kPacket},
    {"AAC with iTunSMPB", 2, 16, aac(kNoEdits), kFrames, 0, asItunes},
    {"AAC with iTunSMPB and edits", 2, 16, aac(), kFrames, 0, asItunes},
    {"AAC with absurd iTunSMPB", 2, 16, aac(), kFrames, 0, withAbsurdGapless},
    {"AAC cut by an edit", 2, 16, aac(), 44100, 0, cutByEdit},
    {"AAC with a fast clock", 2, 16, aac(), kFrames, 0, withFastClock},
    {"AAC in fragments", 2, 16, aac(kFragments), kFrames + kPacket, kPacket},
    {"AAC behind AC-3",
     2,
     16,
     {"-map", "0", "-map", "0", "-c:a:0", "ac3", "-c:a:1", "aac", "-aac_pns", "0", "-b:a:1", "256k",
      "-f", "mp4"}},
    {"MP3", 2, 16, {"-c:a", "libmp3lame", "-b:a", "320k", "-f", "mp4"}},
    {"ALAC", 2, 16, alac("s16p")},
    {"ALAC 24 bits", 2, 24, alac("s32p", {"-bits_per_raw_sample", "24"})},
    {"ALAC 5.1", 6, 16, alac("s16p")},
    {"ALAC in fragments", 2, 16, alac("s16p", kFragments)},
    {"ALAC without edits", 1, 16, alac("s16p", kNoEdits)},
};

class Mp4Test : public testing::TestWithParam<Mp4Case> {
  protected:
    void SetUp() override {
        if (!hasTool("ffmpeg")) {
            GTEST_SKIP() << "ffmpeg is not installed";
        }
    }
    TemporaryFolder folder;
};

TEST_P(Mp4Test, PlaysItsSoundInTimeFromAnyPlace) {
    const Mp4Case& mp4 = GetParam();
    const TestSound sound(kFrames, mp4.channels, mp4.bits);
    std::string bytes = encodeWith(folder, "a.m4a", sound, mp4.options);
    if (mp4.change != nullptr) {
        bytes = mp4.change(std::move(bytes));
    }
    const auto [file, error] = AudioFile::open(folder.write("a", bytes));
    ASSERT_TRUE(file) << error;
    ASSERT_EQ(file->length(), mp4.frames);
    EXPECT_EQ(file->sampleRate(), 44100);
    EXPECT_EQ(file->format().layout, rt::ChannelLayout::usual(mp4.channels));
    const std::vector<float> linear = readAll(*file);
    ASSERT_EQ(linear.size(), static_cast<std::size_t>(mp4.frames * mp4.channels));
    const auto delay = static_cast<std::ptrdiff_t>(mp4.delay * mp4.channels);
    const std::vector<float> behindDelay(linear.begin() + delay, linear.end());
    if (mp4.options[1] == "alac") {
        EXPECT_TRUE(behindDelay == sound.asFloat());
    } else {
        EXPECT_GT(likeness(behindDelay, sound.asFloat()), 0.7);
    }
    expectSameFromAnywhere(*file, linear);
}

INSTANTIATE_TEST_SUITE_P(, Mp4Test, testing::ValuesIn(kCases));

class Mp4FileTest : public Mp4Test {};

TEST_F(Mp4FileTest, PlaysWhatATruncatedFileHolds) {
    const TestSound sound(kFrames, 2, 16);
    const std::string bytes =
        encodeWith(folder, "a.m4a", sound, alac("s16p", {"-movflags", "+faststart"}));
    const auto file =
        AudioFile::open(folder.write("a", bytes.substr(0, bytes.size() * 6 / 10))).file;
    ASSERT_TRUE(file);
    EXPECT_EQ(file->length(), kFrames);
    const std::vector<float> played = readAll(*file);
    const std::vector<float> all = sound.asFloat();
    EXPECT_GT(played.size(), all.size() / 2);
    EXPECT_LT(played.size(), all.size() * 7 / 10);
    EXPECT_TRUE(std::equal(played.begin(), played.end(), all.begin()));
    EXPECT_TRUE(file->seek(kFrames - 100));
    EXPECT_TRUE(readAll(*file).empty());
}

TEST_F(Mp4FileTest, KeepsThePlaceOfWhatFollowsDamage) {
    const TestSound sound(kFrames, 2, 16);
    std::string bytes = encodeWith(folder, "a.m4a", sound, alac("s16p"));
    bytes.replace(bytes.size() / 3, 50, 50, '\xFF');
    const auto file = AudioFile::open(folder.write("a", bytes)).file;
    ASSERT_TRUE(file);
    const std::vector<float> played = readAll(*file);
    const std::vector<float> all = sound.asFloat();
    ASSERT_EQ(played.size(), all.size());
    EXPECT_FALSE(played == all);
    const auto behind = static_cast<std::ptrdiff_t>(all.size() / 2);
    EXPECT_TRUE(std::equal(played.begin() + behind, played.end(), all.begin() + behind));
}

TEST_F(Mp4FileTest, SaysWhyItIsRefused) {
    const TestSound sound(5000, 2, 16);
    const std::string plain = encodeWith(folder, "a.m4a", sound, aac());
    const auto renamed = [&](const std::string& from, const std::string& to) {
        std::string bytes = plain;
        return bytes.replace(bytes.rfind(from), 4, to);
    };
    std::string empty = plain;
    const std::size_t begin = empty.find("mdat") + 4;
    empty.replace(begin, empty.find("moov") - begin - 4, empty.find("moov") - begin - 4, '\0');
    const struct {
        std::string bytes;
        const char* reason;
    } cases[] = {
        {encodeWith(folder, "b.mp4", sound, {"-c:a", "ac3"}), "AC-3"},
        {encodeWith(folder, "c.mp4", sound, {"-c:a", "eac3"}), "E-AC-3"},
        {renamed("mp4a", "Opus"), "Opus"},
        {renamed("mp4a", "drms"), "protected"},
        {renamed("mp4a", "enca"), "protected"},
        {renamed("soun", "vide"), "without sound"},
        {plain.substr(0, plain.size() / 2), "table of contents"},
        {empty, "cannot make out"},
    };
    for (const auto& refused : cases) {
        const auto opened = AudioFile::open(folder.write("r", refused.bytes));
        EXPECT_FALSE(opened.file) << refused.reason;
        EXPECT_THAT(opened.error, testing::HasSubstr(refused.reason));
    }
}

} // namespace

} // namespace quorel::test
