#include "support/AudioFixtures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace quorel::test {

namespace {

using rt::ChannelLayout;
using enum rt::Speaker;

struct WavCase {
    const char* name;
    int channels;
    int bits;
    WavRecipe recipe;
    ChannelLayout layout;
};

std::ostream& operator<<(std::ostream& out, const WavCase& wav) {
    return out << wav.name;
}

const std::string kOddChunk = chunk("LIST", "odd");
const std::string kTrailer = chunk("id3 ", "not sound");
constexpr uint32_t kUnknown = 0xFFFFFFFF;

const WavCase kCases[] = {
    {"u8 mono", 1, 8, {}, ChannelLayout::usual(1)},
    {"s16", 2, 16, {}, ChannelLayout::usual(2)},
    {"s24", 2, 24, {}, ChannelLayout::usual(2)},
    {"s32", 2, 32, {}, ChannelLayout::usual(2)},
    {"f32", 2, 24, {.tag = 3, .containerBytes = 4}, ChannelLayout::usual(2)},
    {"f64", 2, 24, {.tag = 3, .containerBytes = 8}, ChannelLayout::usual(2)},
    {"big-endian s16", 2, 16, {.form = "RIFX"}, ChannelLayout::usual(2)},
    {"big-endian s24", 2, 24, {.form = "RIFX"}, ChannelLayout::usual(2)},
    {"12 bits in 16", 2, 12, {}, ChannelLayout::usual(2)},
    {"20 bits in 24", 2, 20, {.mask = 3}, ChannelLayout::usual(2)},
    {"24 bits in 32", 2, 24, {.containerBytes = 4, .mask = 3}, ChannelLayout::usual(2)},
    {"long form", 2, 16, {.form = "RF64"}, ChannelLayout::usual(2)},
    {"long form with trailer", 2, 16, {.form = "RF64", .after = kTrailer}, ChannelLayout::usual(2)},
    {"chunks around", 2, 16, {.before = kOddChunk, .after = kTrailer}, ChannelLayout::usual(2)},
    {"size all ones", 2, 16, {.dataSize = kUnknown}, ChannelLayout::usual(2)},
    {"size 0", 2, 16, {.dataSize = 0}, ChannelLayout::usual(2)},
    {"size too large", 2, 16, {.dataSize = 0x7FFFF000}, ChannelLayout::usual(2)},
    {"six channels without mask", 6, 16, {}, ChannelLayout::usual(6)},
    {"5.1 with side speakers",
     6,
     16,
     {.mask = 0x60F},
     {6, {FrontLeft, FrontRight, FrontCenter, LowFrequency, SideLeft, SideRight}}},
    {"more channels than mask bits", 4, 16, {.mask = 3}, {4, {FrontLeft, FrontRight}}},
    {"mono on a single side", 1, 16, {.mask = 1}, ChannelLayout::usual(1)},
    {"eight channels", 8, 24, {.mask = 0x63F}, ChannelLayout::usual(8)},
};

class WavTest : public testing::TestWithParam<WavCase> {
  protected:
    TemporaryFolder folder;
};

TEST_P(WavTest, GivesEverySampleExactly) {
    const WavCase& wav = GetParam();
    const TestSound sound(70001, wav.channels, wav.bits);
    const auto [file, error] = AudioFile::open(folder.write("a", wavBytes(sound, wav.recipe)));
    ASSERT_TRUE(file) << error;
    EXPECT_EQ(file->length(), 70001);
    EXPECT_EQ(file->sampleRate(), 44100);
    EXPECT_EQ(file->format().layout, wav.layout);
    const int container =
        wav.recipe.containerBytes > 0 ? wav.recipe.containerBytes : (wav.bits + 7) / 8;
    EXPECT_EQ(file->dataRate(), 44100.0 * wav.channels * container * 8);
    EXPECT_TRUE(readAll(*file) == sound.asFloat());
    EXPECT_EQ(file->position(), file->length());
}

INSTANTIATE_TEST_SUITE_P(, WavTest, testing::ValuesIn(kCases));

TEST(WavFile, EndsWithItsLastWholeFrameWhereCutOff) {
    const TemporaryFolder folder;
    const TestSound sound(1000, 2, 24);
    const std::string bytes = wavBytes(sound);
    const struct {
        std::size_t bytes;
        int64_t frames;
    } cuts[] = {{bytes.size() - 1, 999}, {44 + 6 * 600 + 5, 600}, {44 + 5, 0}, {44, 0}};
    for (const auto& cut : cuts) {
        const auto file = AudioFile::open(folder.write("a", bytes.substr(0, cut.bytes))).file;
        ASSERT_TRUE(file);
        EXPECT_EQ(file->length(), cut.frames);
        EXPECT_EQ(readAll(*file).size(), static_cast<std::size_t>(2 * cut.frames));
    }
}

TEST(WavFile, KeepsAFinishedEmptyFileEmpty) {
    const TemporaryFolder folder;
    const auto bytes = wavBytes(TestSound(0, 2, 16), {.after = kTrailer});
    const auto file = AudioFile::open(folder.write("a", bytes)).file;
    ASSERT_TRUE(file);
    EXPECT_EQ(file->length(), 0);
}

TEST(WavFile, TurnsWhatIsNoNumberIntoSilence) {
    const TemporaryFolder folder;
    std::string bytes = wavBytes(TestSound(4, 1, 24), {.tag = 3, .containerBytes = 4});
    const float broken[] = {std::numeric_limits<float>::quiet_NaN(),
                            -std::numeric_limits<float>::infinity(), 1.5F, -3.0F};
    bytes.replace(44, sizeof(broken), reinterpret_cast<const char*>(broken), sizeof(broken));
    const auto file = AudioFile::open(folder.write("a", bytes)).file;
    ASSERT_TRUE(file);
    EXPECT_THAT(readAll(*file), testing::ElementsAre(0, 0, 1.5F, -3.0F));
}

TEST(WavFile, SaysWhyItIsRefused) {
    const TemporaryFolder folder;
    const TestSound sound(100, 2, 16);
    const std::string plain = wavBytes(sound);
    const struct {
        std::string bytes;
        const char* reason;
    } cases[] = {
        {wavBytes(sound, {.tag = 0x31}), "compressed"},
        {wavBytes(sound, {.tag = 0x161, .mask = 3}), "compressed"},
        {wavBytes(TestSound(100, 9, 16)), "9 channels"},
        {wavBytes(sound, {.sampleRate = 0}), "0 Hz"},
        {wavBytes(TestSound(100, 2, 24), {.tag = 3, .containerBytes = 3}), "24 bits"},
        {plain.substr(0, 12), "format"},
        {plain.substr(0, 36), "without sound"},
    };
    for (const auto& refused : cases) {
        const auto opened = AudioFile::open(folder.write("a", refused.bytes));
        EXPECT_FALSE(opened.file) << refused.reason;
        EXPECT_THAT(opened.error, testing::HasSubstr(refused.reason));
    }
}

} // namespace

} // namespace quorel::test
