// Joins through the rate converter: what was cut must come out as if it had never been cut.
#include "EngineFixture.h"
#include "audio/decode/EncodedFiles.h"

namespace quorel::test {
namespace {

class Join : public EngineTest {
  protected:
    /// Renders one recording uncut, for comparison.
    static Samples uncut(const Samples& whole, int rate, int64_t frames) {
        OfflineRenderer plain({kRate, rt::ChannelLayout::usual(2)});
        EXPECT_FALSE(plain.engine().load(track(stereo(whole, rate)), 0));
        Samples rendered;
        plain.render(frames, rendered);
        return rendered;
    }
    static double worstDifference(const Samples& a, const Samples& b) {
        double worst = a.size() == b.size() ? 0 : 1e9;
        for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i) {
            worst =
                std::max(worst, std::abs(static_cast<double>(a[i]) - static_cast<double>(b[i])));
        }
        return worst;
    }
};
INSTANTIATE_TEST_SUITE_P(OutputLatency, Join, testing::Values(0, 9600));

TEST_P(Join, cutsAtOddFramesDoNotShow) {
    constexpr int64_t frames = 330001;
    for (const int rate : {44100, 48000, 96000, 22050}) {
        const Samples whole = music(frames);
        const int64_t rendered = frames * kRate / rate + 48000;
        out.clear();
        const std::vector<int64_t> cuts{0, 87013, 201111, frames};
        std::size_t next = 1;
        const auto cut = [&] {
            const auto file = stereo(part(whole, cuts[next - 1], cuts[next]), rate);
            ++next;
            return track(file);
        };
        engine.onNeedPreload = [&] {
            if (next < cuts.size()) {
                EXPECT_TRUE(engine.preloadNext(cut()));
            }
        };
        promoted.clear();
        ended.clear();
        const int64_t start = offline.position();
        ASSERT_TRUE(load(cut()));
        renderFrames(rendered);
        EXPECT_LT(worstDifference(out, uncut(whole, rate, rendered)), 1e-6) << rate;
        ASSERT_EQ(promoted.size(), 2U) << rate;
        ASSERT_EQ(ended.size(), 1U) << rate;
        EXPECT_EQ(promoted[0].second - start, std::llround(87013.0 * kRate / rate)) << rate;
        EXPECT_EQ(promoted[1].second - start, std::llround(201111.0 * kRate / rate)) << rate;
        EXPECT_EQ(ended[0] - start, std::llround(static_cast<double>(frames) * kRate / rate))
            << rate;
        engine.stop(0);
        render(1);
    }
}

TEST_P(Join, aTrackTakenBackLeavesTheConverterAsItWas) {
    const Samples whole = music(220500);
    const int64_t rendered = 300000;
    const auto piece = [&](int64_t from, int64_t to) {
        return track(stereo(part(whole, from, to), 44100));
    };
    const Samples expected = uncut(whole, 44100, rendered);
    const Samples alone = uncut(part(whole, 0, 132301), 44100, rendered);
    for (const double after : {0.1, 1.5, 2.6}) { // before, while and after the other one is decoded
        for (const bool another : {true, false}) {
            out.clear();
            ended.clear();
            ASSERT_TRUE(load(piece(0, 132301)));
            ASSERT_TRUE(engine.preloadNext(track(stereo(Samples(2 * 44100, 0.7F), 44100))));
            render(after);
            engine.discardQueued();
            EXPECT_FALSE(engine.hasQueued());
            if (another) {
                ASSERT_TRUE(engine.preloadNext(piece(132301, 220500)));
            }
            renderFrames(rendered - std::llround(after * kRate));
            EXPECT_LT(worstDifference(out, another ? expected : alone), another ? 1e-6 : 1e-3)
                << after << ' ' << another;
            EXPECT_EQ(ended.size(), 1U);
            engine.stop(0);
            render(1);
        }
    }
    EXPECT_EQ(discarded, 6);
}

// Two real files: what is heard is the one's frames and then the other's, with nothing between
// them, whatever the codec puts before and behind its sound.

constexpr int64_t kFirst = 87013;
constexpr int64_t kSecond = 113988;
constexpr int kEncodedRate = 44100;

class EncodedJoin : public EncodedFileTest {
  protected:
    static TrackToPlay trackOf(std::shared_ptr<AudioFile> file) {
        return {std::move(file), QUuid::createUuid(), 0, {}, 1};
    }
    static Samples render(const std::vector<std::shared_ptr<AudioFile>>& files) {
        OfflineRenderer offline({kEncodedRate, rt::ChannelLayout::usual(2)});
        EXPECT_FALSE(offline.engine().load(trackOf(files.front()), 0));
        EXPECT_TRUE(files.size() == 1 || offline.engine().preloadNext(trackOf(files.back())));
        Samples out;
        offline.render(kFirst + kSecond + kEncodedRate, out);
        return out;
    }
};

TEST_F(EncodedJoin, isOneSoundAndThenTheOther) {
    const std::pair<const char*, std::vector<std::string>> cases[] = {
        {"lame.mp3", {"-c:a", "libmp3lame", "-q:a", "2"}},
        {"aac.m4a", {"-c:a", "aac"}},
        {"aac.m4b", {"-c:a", "aac", "-f", "ipod"}},
        {"alac.caf", {"-c:a", "alac"}},
        {"best.flac", {"-c:a", "flac"}},
        {"pcm.wav", {"-c:a", "pcm_s16le"}},
    };
    TestSound pieces[] = {TestSound(kFirst + kSecond, 2, 16), TestSound(0, 2, 16)};
    const auto cut = pieces[0].samples.begin() + 2 * kFirst;
    pieces[1].samples.assign(cut, pieces[0].samples.end());
    pieces[0].samples.erase(cut, pieces[0].samples.end());
    for (const auto& [name, options] : cases) {
        std::vector<std::shared_ptr<AudioFile>> files;
        Samples decoded;
        for (const TestSound& piece : pieces) {
            const std::string bytes = encodeWith(folder, name, piece, options);
            files.push_back(
                AudioFile::open(folder.write(std::to_string(files.size()) + name, bytes)).file);
            ASSERT_TRUE(files.back()) << name;
            const Samples sound = readAll(*files.back());
            ASSERT_EQ(sound.size(), piece.samples.size()) << name;
            decoded.insert(decoded.end(), sound.begin(), sound.end());
            files.back()->seek(0);
        }
        const Samples joined = render(files);
        const Samples uncut = render({std::make_shared<MadeFile>(kEncodedRate, 2, decoded)});
        const auto apart = std::mismatch(joined.begin(), joined.end(), uncut.begin(), uncut.end());
        EXPECT_EQ((apart.first - joined.begin()) / 2, kFirst + kSecond + kEncodedRate)
            << "first frame that differs in " << name;
    }
}

} // namespace
} // namespace quorel::test
