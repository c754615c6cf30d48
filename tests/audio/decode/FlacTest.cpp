#include "audio/decode/EncodedFiles.h"

namespace quorel::test {

namespace {

constexpr int64_t kFrames = 330001;

struct FlacCase {
    const char* name;
    int channels;
    int bits;
    std::vector<std::string> options;
    std::string (*change)(std::string bytes) = nullptr; // done to the encoded file
};

// STREAMINFO's total is the low 36 bits of the 8 bytes at byte 18.
std::string withTotal(std::string bytes, uint64_t total) {
    std::string field;
    for (int shift = 32; shift >= 0; shift -= 8)
        field += static_cast<char>(total >> shift & 0xFF);
    field[0] = static_cast<char>(field[0] | (bytes.at(21) & 0xF0));
    return bytes.replace(21, field.size(), field);
}

std::string behindId3(std::string bytes) {
    std::string tags("ID3\4\0\0\0\0\2\1", 10);
    tags.append(257, 'x');
    tags.append("ID3\3\0\0\0\0\0\5", 10);
    tags.append(5, '\0');
    return bytes.insert(0, tags);
}
std::string beforeId3v1(std::string bytes) {
    return withTotal(std::move(bytes), 0).append("TAG").append(125, ' ');
}

const FlacCase kCases[] = {
    {"8 bits mono", 1, 8, {}},
    {"12 bits", 2, 12, {}},
    {"20 bits", 2, 20, {}},
    {"32 bits", 2, 32, {}},
    {"3 channels", 3, 16, {}},
    {"7 channels", 7, 16, {}},
    {"7.1", 8, 16, {}},
    {"tiny blocks", 1, 16, {"--blocksize=16", "--lax"}},
    {"large blocks", 2, 24, {"--blocksize=65535", "--lax"}},
    {"total too short", 2, 16, {}, [](std::string b) { return withTotal(std::move(b), 1000); }},
    {"total too long", 2, 16, {}, [](std::string b) { return withTotal(std::move(b), 9'000'000); }},
    {"behind two ID3v2 tags", 2, 16, {}, behindId3},
    {"no total, before an ID3v1 tag", 2, 16, {}, beforeId3v1},
};

class FlacTest : public testing::Test {
  protected:
    void SetUp() override {
        if (!hasTool("flac"))
            GTEST_SKIP() << "flac is not installed";
    }
    TemporaryFolder folder;
};

std::string encode(const TemporaryFolder& folder, const TestSound& sound,
                   const std::vector<std::string>& options = {}) {
    static constexpr uint32_t kMasks[] = {0, 4, 3, 7, 0x33, 0x37, 0x3F, 0x70F, 0x63F};
    const std::string wav =
        folder.write("in.wav", wavBytes(sound, {.mask = kMasks[sound.channels]}));
    std::vector<std::string> command{"flac",           "-s",           "-f", "-0",
                                     "--no-seektable", "--no-padding", "-o", folder.path("a.flac")};
    command.insert(command.end(), options.begin(), options.end());
    command.push_back(wav);
    EXPECT_TRUE(runTool(command));
    return readFile(folder.path("a.flac"));
}

TEST_F(FlacTest, GivesEverySampleExactlyFromAnyPlace) {
    for (const FlacCase& flac : kCases) {
        SCOPED_TRACE(flac.name);
        const int64_t frames = flac.channels > 4 ? kFrames / 4 : kFrames;
        const TestSound sound(frames, flac.channels, flac.bits);
        const std::vector<float> expected = sound.asFloat();
        const std::string encoded = encode(folder, sound, flac.options);
        const std::string bytes = flac.change != nullptr ? flac.change(encoded) : encoded;
        const auto [file, error] = AudioFile::open(folder.write("a.flac", bytes));
        ASSERT_TRUE(file) << error;
        ASSERT_EQ(file->length(), frames);
        EXPECT_EQ(file->sampleRate(), 44100);
        EXPECT_EQ(file->format().layout, rt::ChannelLayout::usual(flac.channels));
        EXPECT_NEAR(file->dataRate() * static_cast<double>(frames) / 44100 / 8,
                    static_cast<double>(bytes.size()), 1000);
        ASSERT_TRUE(readAll(*file) == expected);
        expectSeeksExact(*file, expected);
    }
}

TEST_F(FlacTest, TakesItsLayoutFromTheChannelMaskComment) {
    std::string bytes = encode(folder, TestSound(5000, 6, 16));
    const std::size_t mask = bytes.find("MASK=0x003F"); // which flac itself put there
    ASSERT_NE(mask, std::string::npos);
    const auto file =
        AudioFile::open(folder.write("a.flac", bytes.replace(mask + 7, 4, "060f"))).file;
    ASSERT_TRUE(file);
    EXPECT_EQ(file->format().layout.speakers[4], rt::Speaker::SideLeft);
    EXPECT_EQ(file->format().layout.speakers[5], rt::Speaker::SideRight);
}

TEST_F(FlacTest, PlaysWhatIsThereOfAFileThatBreaksOff) {
    const TestSound sound(kFrames, 2, 16);
    const std::vector<float> expected = sound.asFloat();
    const std::string bytes = withTotal(encode(folder, sound), 0);
    const auto file =
        AudioFile::open(folder.write("a.flac", bytes.substr(0, bytes.size() * 6 / 10))).file;
    ASSERT_TRUE(file);
    const std::vector<float> got = readAll(*file);
    EXPECT_EQ(file->length(), static_cast<int64_t>(got.size() / 2));
    EXPECT_GT(file->length(), kFrames / 2);
    EXPECT_LT(file->length(), kFrames * 7 / 10);
    EXPECT_TRUE(std::equal(got.begin(), got.end(), expected.begin()));

    const std::string head = encode(folder, sound).substr(0, bytes.find("\xFF\xF8", 42));
    const auto silent = AudioFile::open(folder.write("a.flac", head)).file;
    ASSERT_TRUE(silent);
    EXPECT_EQ(silent->length(), 0);
    EXPECT_TRUE(readAll(*silent).empty());
}

} // namespace

} // namespace quorel::test
