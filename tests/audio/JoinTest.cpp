// Joins through the rate converter: what was cut must come out as if it had never been cut.
#include "EngineFixture.h"

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
    const Samples other(2 * 44100, 0.7F);
    const int64_t rendered = 300000;
    const Samples expected = uncut(whole, 44100, rendered);
    const Samples alone = uncut(part(whole, 0, 132301), 44100, rendered);
    for (const double after : {0.1, 1.5, 2.6}) { // before, while and after the other one is decoded
        for (const bool another : {true, false}) {
            out.clear();
            ASSERT_TRUE(load(track(stereo(part(whole, 0, 132301), 44100))));
            ASSERT_TRUE(engine.preloadNext(track(stereo(other, 44100))));
            render(after);
            engine.discardQueued();
            if (another) {
                ASSERT_TRUE(engine.preloadNext(track(stereo(part(whole, 132301, 220500), 44100))));
            }
            renderFrames(rendered - std::llround(after * kRate));
            EXPECT_LT(worstDifference(out, another ? expected : alone), another ? 1e-6 : 1e-3)
                << after << ' ' << another;
            engine.stop(0);
            render(1);
        }
    }
}

} // namespace
} // namespace quorel::test
