#include "audio/decode/EncodedFiles.h"

namespace quorel::test {

namespace {

constexpr int64_t kFrames = 330001;

class Damage : public EncodedFileTest {
  protected:
    const TestSound sound{kFrames, 2, 16};
    const std::vector<float> expected = sound.asFloat();
};

TEST_F(Damage, LeavesWhatFollowsInItsPlace) {
    const std::string flac = encodeWith(folder, "a.flac", sound, {"-c:a", "flac"});
    const std::string alac =
        encodeWith(folder, "a.m4a", sound, {"-c:a", "alac", "-sample_fmt", "s16p"});
    const auto changed = [](std::string bytes, std::size_t at, std::size_t count, char to) {
        return bytes.replace(at, count, count, to);
    };
    const struct {
        const char* name;
        std::string bytes;
        bool noticed; // by a checksum, so that it is silent
    } cases[] = {
        {"one byte", changed(flac, flac.size() / 2, 1, '\x5A'), true},
        {"overwritten", changed(flac, flac.size() / 3, 60000, '\xFF'), true},
        {"cut out", std::string(flac).erase(flac.size() / 2, 50000), true},
        {"first frame", changed(flac, flac.find("\xFF\xF8", 42), 2000, 'x'), true},
        {"a packet", changed(alac, alac.size() / 3, 50, '\xFF'), false},
    };
    for (const auto& damaged : cases) {
        SCOPED_TRACE(damaged.name);
        const auto file = AudioFile::open(folder.write("damaged", damaged.bytes)).file;
        ASSERT_TRUE(file);
        ASSERT_EQ(file->length(), kFrames);
        const std::vector<float> got = readAll(*file);
        ASSERT_EQ(got.size(), expected.size());
        std::size_t lost = 0;
        for (std::size_t i = 0; i < got.size(); ++i) {
            lost += got[i] != expected[i] ? 1 : 0;
            ASSERT_TRUE(got[i] == expected[i] || got[i] == 0 || !damaged.noticed) << i;
        }
        EXPECT_GT(lost, 0U);
        EXPECT_LT(lost, 2U * 8 * 4608);
        expectSeeksExact(*file, got);
    }
}

// Junk inside a frame, longer than what is read at once: that frame is lost, no other.
TEST_F(Damage, LosesOnlyTheTornMpegFrame) {
    const std::string bytes =
        encodeWith(folder, "a.mp3", sound, {"-c:a", "libmp3lame", "-b:a", "128k"});
    const auto whole = AudioFile::open(folder.path("a.mp3")).file;
    ASSERT_TRUE(whole);
    const std::vector<float> linear = readAll(*whole);
    const std::string junk = std::string(200000, 'x') + "\xFF\xFB\x90\x64 more \xFF\xF1\x50\x80" +
                             "\x01\x7F\xFC" + std::string(3000, '\xFF') + std::string(700, 'x');
    const auto torn =
        AudioFile::open(folder.write("torn", std::string(bytes).insert(bytes.size() / 2, junk)))
            .file;
    ASSERT_TRUE(torn);
    const std::vector<float> rest = readAll(*torn);
    EXPECT_NEAR(static_cast<double>(torn->length()), kFrames, 2 * 1152);
    ASSERT_EQ(rest.size(), static_cast<std::size_t>(2 * torn->length()));
    EXPECT_TRUE(std::equal(rest.begin(), rest.begin() + 300000, linear.begin()));
    // The padding is part of a damaged file, so its end lies that much later.
    const std::vector<float> tail(linear.end() - 200000, linear.end());
    EXPECT_NE(std::search(rest.end() - 210000, rest.end(), tail.begin(), tail.end()), rest.end());
}

} // namespace

} // namespace quorel::test
