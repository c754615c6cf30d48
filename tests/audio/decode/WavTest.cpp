#include "support/AudioFixtures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <optional>

namespace quorel::test {

namespace {

using rt::ChannelLayout;
using enum rt::Speaker;

struct WavCase {
    const char* name;
    int channels;
    int bits;
    WavRecipe recipe;
    std::optional<ChannelLayout> layout = {}; // unless the usual one
};

const std::string kOddChunk = chunk("LIST", "odd");
const std::string kTrailer = chunk("id3 ", "not sound");

const WavCase kCases[] = {
    {"big-endian s16", 2, 16, {.form = "RIFX"}},
    {"big-endian s24", 2, 24, {.form = "RIFX"}},
    {"12 bits in 16", 2, 12, {}},
    {"20 bits in 24", 2, 20, {.mask = 3}},
    {"24 bits in 32", 2, 24, {.containerBytes = 4, .mask = 3}},
    {"long form with trailer", 2, 16, {.form = "RF64", .after = kTrailer}},
    {"chunks around", 2, 16, {.before = kOddChunk, .after = kTrailer}},
    {"size 0", 2, 16, {.dataSize = 0}},
    {"size too large", 2, 16, {.dataSize = 0x7FFFF000}},
    {"six channels without mask", 6, 16, {}},
    {"5.1 with side speakers",
     6,
     16,
     {.mask = 0x60F},
     {{6, {FrontLeft, FrontRight, FrontCenter, LowFrequency, SideLeft, SideRight}}}},
    {"more channels than mask bits", 4, 16, {.mask = 3}, {{4, {FrontLeft, FrontRight}}}},
    {"mono on a single side", 1, 16, {.mask = 1}},
};

TEST(WavFile, GivesEverySampleExactly) {
    const TemporaryFolder folder;
    for (const WavCase& wav : kCases) {
        SCOPED_TRACE(wav.name);
        const TestSound sound(70001, wav.channels, wav.bits);
        const auto [file, error] = AudioFile::open(folder.write("a", wavBytes(sound, wav.recipe)));
        ASSERT_TRUE(file) << error;
        EXPECT_EQ(file->length(), 70001);
        EXPECT_EQ(file->sampleRate(), 44100);
        EXPECT_EQ(file->format().layout, wav.layout.value_or(ChannelLayout::usual(wav.channels)));
        const int container =
            wav.recipe.containerBytes > 0 ? wav.recipe.containerBytes : (wav.bits + 7) / 8;
        EXPECT_EQ(file->dataRate(), 44100.0 * wav.channels * container * 8);
        EXPECT_TRUE(readAll(*file) == sound.asFloat());
        EXPECT_EQ(file->position(), file->length());
    }
}

TEST(WavFile, EndsWithItsLastWholeFrame) {
    const TemporaryFolder folder;
    const std::string bytes = wavBytes(TestSound(1000, 2, 24));
    const std::tuple<std::string, int64_t> cases[] = {
        {bytes.substr(0, bytes.size() - 1), 999},
        {bytes.substr(0, 44 + 6 * 600 + 5), 600},
        {bytes.substr(0, 44 + 5), 0},
        {bytes.substr(0, 44), 0},
        {wavBytes(TestSound(0, 2, 16), {.after = kTrailer}), 0}, // finished, so 0 is no lie
    };
    for (const auto& [cutOff, frames] : cases) {
        const auto file = AudioFile::open(folder.write("a", cutOff)).file;
        ASSERT_TRUE(file);
        EXPECT_EQ(file->length(), frames);
        EXPECT_EQ(readAll(*file).size(), static_cast<std::size_t>(2 * frames));
    }
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

} // namespace

} // namespace quorel::test
