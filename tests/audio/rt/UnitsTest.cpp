#include "Stream.h"
#include "audio/rt/DynamicsProcessor.h"
#include "audio/rt/EqUnit.h"
#include "audio/rt/Mixer.h"
#include "audio/rt/PeakLimiter.h"

#include <gtest/gtest.h>

#include <memory>

namespace quorel::rt::test {
namespace {

constexpr float kUp[10] = {6, 4, -3, 2, -2, 3, -4, 2, 5, 6};
constexpr float kFlat[10] = {};

/// A unit; what is done to it while it runs, at thousandths of the stream's length, goes to
/// `events`.
using Make = std::unique_ptr<Node> (*)(Events& events);

std::unique_ptr<Node> makeMixer(Events& events) {
    auto unit = std::make_unique<Mixer>();
    Mixer& m = *unit;
    events = {{100, [&m] { m.glideVolume(0.3f); }},
              {105, [&m] { m.setPan(-0.7f); }},
              {300, [&m] { m.rampVolume(0.0f, 1500, Shape::Linear); }},
              {500, [&m] { m.rampVolume(1.0f, 700, Shape::RaisedCosine); }},
              {520, [&m] { m.setPan(0.0f); }}};
    return unit;
}

std::unique_ptr<Node> makeEqualiser(Events& events) {
    auto unit = std::make_unique<EqUnit>(10);
    EqUnit& e = *unit;
    for (int i = 0; i < 10; ++i)
        e.setBand(i, {.type = i == 0 ? FilterType::LowShelf : FilterType::Parametric,
                      .frequencyHz = 31.25 * (1 << i),
                      .gainDb = i == 3 ? 2.0f : 0.0f});
    e.setBypass(false);
    events = {{50, [&e] { e.setGain(2, 5); }},
              {100, [&e] { e.rampGains(kUp, 8, 97); }},
              {120, [&e] { e.rampGlobalGain(-5, 10, 61); }},
              {130, [&e] { e.setGain(9, -8); }},
              {500, [&e] { e.rampGains(kFlat, 8, 11); }},
              {600, [&e] { e.setBypass(true); }},
              {800, [&e] { e.setBypass(false), e.setGain(4, 3); }}};
    return unit;
}

std::unique_ptr<Node> makeDynamics(Events& events) {
    static constexpr DynamicsParameters kSoft{-22, 10, 0.015f, 0.18f, 5.775f};
    static constexpr DynamicsParameters kHard{-26, 5, 0.005f, 0.1f, 7.9625f};
    auto unit = std::make_unique<DynamicsProcessor>();
    DynamicsProcessor& d = *unit;
    events = {{50, [&d] { d.setParameters(kSoft); }},
              {100, [&d] { d.setBypass(false); }},
              {400, [&d] { d.setParameters(kHard); }},
              {600, [&d] { d.setBypass(true); }}};
    return unit;
}

std::unique_ptr<Node> makeLimiter(Events& events) {
    auto unit = std::make_unique<PeakLimiter>();
    PeakLimiter& l = *unit;
    events = {{100, [&l] { l.setPreGain(-0.8f); }}, {500, [&l] { l.setPreGain(6.0f); }}};
    return unit;
}

const std::pair<const char*, Make> kUnits[] = {{"mixer", makeMixer},
                                               {"equaliser", makeEqualiser},
                                               {"dynamics", makeDynamics},
                                               {"limiter", makeLimiter}};

TEST(Units, BlockSizesDoNotChangeASingleBit) {
    for (const auto& [name, make] : kUnits)
        for (const auto& [rate, channels] : {std::pair{8000, 1}, {48000, 2}, {384000, 7}}) {
            constexpr int kFrames = 24000;
            Stream input = Stream::noise((channels + 1) / 2, kFrames, 0.05f);
            for (std::size_t i = 8000; i < 32000; i += 97) // a busy stretch in quiet surroundings
                input.pairs[0][i] *= 40;
            Stream outputs[2] = {input, input};
            for (const bool split : {false, true}) {
                Events events;
                const auto node = make(events);
                for (auto& event : events)
                    event.first *= kFrames / 1000;
                node->prepare(format(rate, channels));
                std::mt19937 random(static_cast<unsigned>(rate));
                const auto size = [&] {
                    return split ? static_cast<int>(random() % (random() % 4 ? 20 : 700)) + 1 : 512;
                };
                run(*node, outputs[split ? 1 : 0], events, size);
            }
            EXPECT_NE(outputs[0].pairs, input.pairs) << name;
            for (std::size_t p = 0; p < input.pairs.size(); ++p)
                for (std::size_t i = 0; i < input.pairs[p].size(); ++i)
                    ASSERT_EQ(outputs[0].pairs[p][i], outputs[1].pairs[p][i])
                        << name << ' ' << rate << " pair " << p << " sample " << i;
        }
}

TEST(Mixer, BalancesAndScalesExactly) {
    struct {
        float volume, pan, left, right;
    } const rows[] = {{1, 0, 1, 1},
                      {0.5f, 0, 0.5f, 0.5f},
                      {1, -1, 1, 0},
                      {1, 0.25f, 0.75f, 1},
                      {0.5f, -0.5f, 0.5f, 0.25f},
                      {0, 0, 0, 0},
                      {1, 7, 0, 1},
                      {-1, 0, 0, 0}};
    const Stream input = Stream::noise(2, 1000, 0.3f);
    for (const auto& row : rows) {
        Mixer mixer;
        mixer.setVolume(row.volume);
        mixer.setPan(row.pan);
        mixer.prepare(format(48000, 4));
        Stream output = input;
        run(mixer, output);
        for (std::size_t p = 0; p < 2; ++p)
            for (std::size_t i = 0; i < 2000; i += 2) {
                ASSERT_EQ(output.pairs[p][i], input.pairs[p][i] * row.left) << row.pan;
                ASSERT_EQ(output.pairs[p][i + 1], input.pairs[p][i + 1] * row.right) << row.pan;
            }
    }
}

} // namespace
} // namespace quorel::rt::test
