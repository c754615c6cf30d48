#include "audio/decode/EncodedFiles.h"

#include <gmock/gmock.h>

namespace quorel::test {

namespace {

constexpr int64_t kFrames = 70001;

struct ContainerCase {
    const char* name; // ends as the file is named
    int channels;
    int bits; // of the true samples
    std::vector<std::string> options;
    int sampleRate = 44100;
    bool exact = true;
};

std::ostream& operator<<(std::ostream& out, const ContainerCase& container) {
    return out << container.name << " " << container.options.at(1);
}

const ContainerCase kCases[] = {
    {"s8.aiff", 2, 8, {"-c:a", "pcm_s8"}},
    {"s16.aiff", 2, 16, {"-c:a", "pcm_s16be"}},
    {"s16mono.aiff", 1, 16, {"-c:a", "pcm_s16be"}, 8000},
    {"s24.aiff", 2, 24, {"-c:a", "pcm_s24be"}, 96000},
    {"s32.aiff", 2, 24, {"-c:a", "pcm_s32be"}, 384000},
    {"sowt.aiff", 2, 16, {"-c:a", "pcm_s16le"}},
    {"fl32.aiff", 2, 24, {"-c:a", "pcm_f32be"}},
    {"fl64.aiff", 2, 24, {"-c:a", "pcm_f64be"}},
    {"surround.aiff", 6, 16, {"-c:a", "pcm_s16be"}, 48000},
    {"ulaw.aiff", 2, 16, {"-c:a", "pcm_mulaw"}, 44100, false},
    {"alaw.aiff", 2, 16, {"-c:a", "pcm_alaw"}, 44100, false},
    {"s16.caf", 2, 16, {"-c:a", "pcm_s16le"}},
    {"s16be.caf", 1, 16, {"-c:a", "pcm_s16be"}, 22050},
    {"s24.caf", 2, 24, {"-c:a", "pcm_s24be"}, 192000},
    {"f32.caf", 2, 24, {"-c:a", "pcm_f32le"}},
    {"f64.caf", 2, 24, {"-c:a", "pcm_f64be"}},
    {"surround.caf", 6, 24, {"-c:a", "pcm_s24le"}, 48000},
    {"ulaw.caf", 2, 16, {"-c:a", "pcm_mulaw"}, 44100, false},
    {"alaw.caf", 2, 16, {"-c:a", "pcm_alaw"}, 44100, false},
    {"alac.caf", 2, 16, {"-c:a", "alac", "-sample_fmt", "s16p"}},
    {"alac24.caf",
     2,
     24,
     {"-c:a", "alac", "-sample_fmt", "s32p", "-bits_per_raw_sample", "24"},
     96000},
    {"alac51.caf", 6, 16, {"-c:a", "alac", "-sample_fmt", "s16p"}, 48000},
    {"ulaw.wav", 2, 16, {"-c:a", "pcm_mulaw"}, 44100, false},
    {"alaw.wav", 1, 16, {"-c:a", "pcm_alaw"}, 8000, false},
    {"ms.wav", 2, 16, {"-c:a", "adpcm_ms"}, 44100, false},
    {"ima.wav", 2, 16, {"-c:a", "adpcm_ima_wav"}, 44100, false},
};

class ContainerTest : public testing::TestWithParam<ContainerCase> {
  protected:
    void SetUp() override {
        if (!hasTool("ffmpeg")) {
            GTEST_SKIP() << "ffmpeg is not installed";
        }
    }
    TemporaryFolder folder;
};

TEST_P(ContainerTest, GivesEverySampleFromAnyPlace) {
    const ContainerCase& container = GetParam();
    const TestSound sound(kFrames, container.channels, container.bits);
    const std::string bytes = encodeWith(folder, container.name, sound, container.options,
                                         {.sampleRate = container.sampleRate});
    const auto [file, error] = AudioFile::open(folder.write("a", bytes));
    ASSERT_TRUE(file) << error;
    EXPECT_EQ(file->sampleRate(), container.sampleRate);
    EXPECT_EQ(file->format().layout, rt::ChannelLayout::usual(container.channels));
    const std::vector<float> linear = readAll(*file);
    ASSERT_EQ(linear.size(), static_cast<std::size_t>(file->length() * container.channels));
    if (container.exact) {
        ASSERT_EQ(file->length(), kFrames);
        EXPECT_TRUE(linear == sound.asFloat());
    } else {
        EXPECT_GE(file->length(), kFrames); // a last block may be filled up
        EXPECT_LE(file->length(), kFrames + 2100);
        EXPECT_GT(likeness(linear, sound.asFloat()), 0.95);
    }
    EXPECT_NEAR(file->dataRate() * static_cast<double>(file->length()) / container.sampleRate / 8,
                static_cast<double>(bytes.size()), 6000);
    expectSameFromAnywhere(*file, linear);
}

INSTANTIATE_TEST_SUITE_P(, ContainerTest, testing::ValuesIn(kCases));

class ContainerFileTest : public ContainerTest {};

TEST_F(ContainerFileTest, PlaysWhatTruncatedFilesHold) {
    const TestSound sound(kFrames, 2, 16);
    const std::vector<float> all = sound.asFloat();
    for (const char* name : {"a.aiff", "a.caf"}) {
        const std::string bytes = encodeWith(folder, name, sound, {"-c:a", "pcm_s16be"});
        const auto file = AudioFile::open(folder.write("a", bytes.substr(0, 200'000))).file;
        ASSERT_TRUE(file);
        const std::vector<float> played = readAll(*file);
        EXPECT_EQ(played.size(), static_cast<std::size_t>(2 * file->length()));
        EXPECT_NEAR(static_cast<double>(played.size()), 100'000, 3000) << name;
        EXPECT_TRUE(std::equal(played.begin(), played.end(), all.begin())) << name;
    }
}

TEST_F(ContainerFileTest, SaysWhyItIsRefused) {
    const TestSound sound(5000, 2, 16);
    const std::string aiff = encodeWith(folder, "a.aiff", sound, {"-c:a", "pcm_s16be"});
    const std::string caf =
        encodeWith(folder, "a.caf", sound, {"-c:a", "alac", "-sample_fmt", "s16p"});
    const auto changed = [](std::string bytes, const std::string& name, std::size_t offset,
                            const std::string& to) {
        return bytes.replace(bytes.find(name) + offset, to.size(), to);
    };
    const struct {
        std::string bytes;
        const char* reason;
    } cases[] = {
        {aiff.substr(0, 12), "description of its format"},
        {changed(aiff, "COMM", 8, std::string(2, '\0')), "0 channels"},
        {changed(aiff, "COMM", 16, "\x7F\xFF"), "sampling rate"},
        {changed(aiff, "COMM", 14, std::string("\0\x40", 2)), "compressed"},
        {changed(aiff, "SSND", 0, "none"), "without sound"},
        {caf.substr(0, 20), "0 channels"},
        {changed(caf, "pakt", 0, "none"), "table of packets"},
        {changed(caf, "kuki", 0, "none"), "decoder needs"},
        {changed(caf, "alac", 0, "ima4"), "not supported"},
    };
    for (const auto& refused : cases) {
        const auto opened = AudioFile::open(folder.write("r", refused.bytes));
        EXPECT_FALSE(opened.file) << refused.reason;
        EXPECT_THAT(opened.error, testing::HasSubstr(refused.reason));
    }
}

} // namespace

} // namespace quorel::test
