// Two real files, joined by the engine: what is heard is the one's frames and then the other's,
// with nothing between them, whatever the codec puts before and behind its sound.
#include "EngineFixture.h"
#include "audio/decode/EncodedFiles.h"

#include <algorithm>

namespace quorel::test {
namespace {

constexpr int64_t kFirst = 87013;
constexpr int64_t kSecond = 113988;
constexpr int kEncodedRate = 44100;

struct Encoding {
    const char* name;
    std::vector<std::string> options; ///< of ffmpeg; none for lame's own program
    bool lossless = false;
};

std::ostream& operator<<(std::ostream& out, const Encoding& encoding) {
    return out << encoding.name;
}

TestSound piece(const TestSound& whole, int64_t from, int64_t frames) {
    TestSound result = whole;
    result.samples.assign(whole.samples.begin() + 2 * from,
                          whole.samples.begin() + 2 * (from + frames));
    return result;
}

class EncodedJoin : public testing::TestWithParam<Encoding> {
  protected:
    /// Path of the encoded piece, whose folder tells the two apart.
    static std::string encode(const TemporaryFolder& folder, const TestSound& sound) {
        const Encoding& encoding = GetParam();
        if (!encoding.options.empty()) {
            encodeWith(folder, encoding.name, sound, encoding.options);
            return folder.path(encoding.name);
        }
        const std::string wav = folder.write("in.wav", wavBytes(sound));
        EXPECT_TRUE(runTool({"lame", "--quiet", "-V2", wav, folder.path(encoding.name)}));
        return folder.path(encoding.name);
    }
    static std::shared_ptr<AudioFile> open(const std::string& path) {
        auto [file, error] = AudioFile::open(path);
        EXPECT_TRUE(file) << error;
        return std::move(file);
    }
    static Samples render(std::shared_ptr<AudioFile> first, std::shared_ptr<AudioFile> second) {
        OfflineRenderer offline({kEncodedRate, rt::ChannelLayout::usual(2)});
        EXPECT_FALSE(offline.engine().load({std::move(first), QUuid::createUuid(), 0, {}, 1}, 0));
        if (second) {
            EXPECT_TRUE(
                offline.engine().preloadNext({std::move(second), QUuid::createUuid(), 0, {}, 1}));
        }
        Samples out;
        offline.render(kFirst + kSecond + kEncodedRate, out);
        return out;
    }
};

INSTANTIATE_TEST_SUITE_P(, EncodedJoin,
                         testing::Values(Encoding{"vbr.mp3", {}},
                                         Encoding{"aac.m4a", {"-c:a", "aac"}},
                                         Encoding{"aac.m4b", {"-c:a", "aac", "-f", "ipod"}},
                                         Encoding{"alac.m4a", {"-c:a", "alac"}, true},
                                         Encoding{"alac.caf", {"-c:a", "alac"}, true},
                                         Encoding{"best.flac", {"-c:a", "flac"}, true},
                                         Encoding{"pcm.wav", {"-c:a", "pcm_s16le"}, true},
                                         Encoding{"pcm.aiff", {"-c:a", "pcm_s16be"}, true},
                                         Encoding{"pcm.caf", {"-c:a", "pcm_s16be"}, true}));

TEST_P(EncodedJoin, isOneSoundAndThenTheOther) {
    if (!hasTool(GetParam().options.empty() ? "lame" : "ffmpeg"))
        GTEST_SKIP() << "the encoder is not installed";
    const TestSound whole(kFirst + kSecond, 2, 16);
    const TemporaryFolder folders[2];
    const std::string first = encode(folders[0], piece(whole, 0, kFirst));
    const std::string second = encode(folders[1], piece(whole, kFirst, kSecond));
    Samples decoded = readAll(*open(first));
    ASSERT_EQ(decoded.size(), static_cast<std::size_t>(2 * kFirst));
    const Samples rest = readAll(*open(second));
    decoded.insert(decoded.end(), rest.begin(), rest.end());
    ASSERT_EQ(decoded.size(), static_cast<std::size_t>(2 * (kFirst + kSecond)));
    if (GetParam().lossless) {
        EXPECT_EQ(decoded, whole.asFloat());
    }

    const Samples joined = render(open(first), open(second));
    const Samples uncut = render(std::make_shared<MadeFile>(kEncodedRate, 2, decoded), nullptr);
    EXPECT_TRUE(std::any_of(uncut.begin(), uncut.end(), [](float x) { return x != 0; }));
    const auto apart = std::mismatch(joined.begin(), joined.end(), uncut.begin(), uncut.end());
    EXPECT_EQ((apart.first - joined.begin()) / 2, kFirst + kSecond + kEncodedRate)
        << "first frame that differs";
}

} // namespace
} // namespace quorel::test
