#include "Stream.h"
#include "audio/rt/EqDesign.h"
#include "audio/rt/EqUnit.h"
#include "support/Spectrum.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <complex>
#include <numbers>

namespace quorel::rt::test {
namespace {

using Complex = std::complex<double>;
using std::numbers::pi;

constexpr double kFrequencies[] = {31, 62, 125, 250, 500, 1000, 2000, 4000, 8000, 16000};

EqBand graphicBand(int i, float gainDb = 0) {
    const auto type = i == 0   ? FilterType::LowShelf
                      : i == 9 ? FilterType::HighShelf
                               : FilterType::Parametric;
    return {.type = type, .frequencyHz = kFrequencies[i], .gainDb = gainDb};
}

double decibels(double magnitude) {
    return 20 * std::log10(magnitude);
}

/// The cookbook's analog transfer functions with one octave of bandwidth, or shelf slope 1.
double analogDb(const EqBand& band, double gainDb, double hz) {
    const double a = std::pow(10.0, gainDb / 40);
    const Complex s(0, hz / band.frequencyHz);
    const Complex damped = std::sqrt(a) * std::numbers::sqrt2 * s;
    const double q = std::numbers::sqrt2;
    switch (band.type) {
    case FilterType::LowShelf:
        return decibels(std::abs(a * (s * s + damped + a) / (a * s * s + damped + 1.0)));
    case FilterType::HighShelf:
        return decibels(std::abs(a * (a * s * s + damped + 1.0) / (s * s + damped + a)));
    case FilterType::Parametric:
        return decibels(std::abs((s * s + s * (a / q) + 1.0) / (s * s + s / (a * q) + 1.0)));
    case FilterType::LowPass:
        return decibels(std::abs(1.0 / (s * s + std::numbers::sqrt2 * s + 1.0)));
    case FilterType::HighPass:
        return decibels(std::abs(s * s / (s * s + std::numbers::sqrt2 * s + 1.0)));
    }
    return 0;
}

double digitalDb(const Biquad& f, double hz, double rate) {
    const Complex z = std::polar(1.0, -2 * pi * hz / rate);
    return decibels(std::abs((f.b0 + f.b1 * z + f.b2 * z * z) / (1.0 + f.a1 * z + f.a2 * z * z)));
}

TEST(EqDesign, FollowsTheAnalogCurve) {
    struct {
        double rate, upToHz, toleranceDb;
    } const rows[] = {
        {44100, 8000, 0.5}, {44100, 16000, 1.1}, {48000, 8000, 0.5},   {48000, 16000, 1.1},
        {96000, 8000, 0.3}, {96000, 20000, 0.6}, {192000, 20000, 0.2}, {384000, 20000, 0.1},
    };
    for (const auto& row : rows) {
        double worst = 0;
        for (int i = 0; i < 10 && kFrequencies[i] <= row.upToHz; ++i)
            for (const double gain : {12.0, 6.0, 3.0, -3.0, -6.0, -12.0})
                for (double hz = 20; hz < std::min(20000.0, 0.49 * row.rate); hz *= 1.02) {
                    const EqBand band = graphicBand(i);
                    const double error =
                        digitalDb(designBiquad(band, gain, row.rate), hz, row.rate) -
                        analogDb(band, gain, hz);
                    worst = std::max(worst, std::abs(error));
                }
        EXPECT_LE(worst, row.toleranceDb) << row.rate << " Hz, bands up to " << row.upToHz;
    }
    for (const EqBand& pass : {EqBand{.type = FilterType::HighPass, .frequencyHz = 30},
                               EqBand{.type = FilterType::LowPass, .frequencyHz = 5000}})
        for (double hz = 10; hz < 10000; hz *= 1.1)
            EXPECT_NEAR(digitalDb(designBiquad(pass, 0, 48000), hz, 48000), analogDb(pass, 0, hz),
                        0.3)
                << hz;
}

TEST(EqDesign, IsStableInBothDirectionsWhateverTheGainAndRate) {
    for (const double rate : {8000., 11025., 22050., 44100., 48000., 96000., 192000., 384000.})
        for (int i = 0; i < 10; ++i)
            for (double gain = -120; gain <= 120; gain += 1.5) {
                const Biquad f = designBiquad(graphicBand(i), gain, rate);
                ASSERT_TRUE(std::isfinite(f.b0 + f.b1 + f.b2 + f.a1 + f.a2));
                ASSERT_LT(std::abs(f.a2), 1) << rate << ' ' << i << ' ' << gain;
                ASSERT_LT(std::abs(f.a1), 1 + f.a2) << rate << ' ' << i << ' ' << gain;
                ASSERT_EQ(f.isIdentity(), gain == 0 || kFrequencies[i] >= 0.49 * rate);
            }
}

void prepareFlat(EqUnit& eq, int rate, int channels = 2) {
    for (int i = 0; i < eq.bands(); ++i)
        eq.setBand(i, graphicBand(i));
    eq.setBypass(false);
    eq.prepare(format(rate, channels));
}

TEST(EqUnit, BoostAndCutNull) {
    EqUnit boost(10);
    EqUnit cut(10);
    for (int i = 0; i < 10; ++i) {
        const float gain = i % 2 ? 12.0f : -7.0f;
        boost.setBand(i, graphicBand(i, gain));
        cut.setBand(i, graphicBand(i, -gain));
    }
    for (EqUnit* eq : {&boost, &cut}) {
        eq->setBypass(false);
        eq->prepare(format(48000));
    }
    const Stream input = Stream::noise(1, 48000, 0.1f);
    Stream output = input;
    run(boost, output);
    run(cut, output);
    double rest = 0;
    double all = 0;
    for (std::size_t i = 0; i < input.pairs[0].size(); ++i) {
        const auto x = static_cast<double>(input.pairs[0][i]);
        const double d = static_cast<double>(output.pairs[0][i]) - x;
        rest += d * d;
        all += x * x;
    }
    EXPECT_LT(10 * std::log10(rest / all), -130);
}

TEST(EqUnit, MeasuresAsDesigned) {
    constexpr int kRate = 48000;
    for (const int bands : {1, 2, 3, 7, 10}) {
        EqUnit eq(bands);
        for (int i = 0; i < bands; ++i)
            eq.setBand(i, graphicBand(i, i % 3 ? 9.0f : -6.0f));
        eq.setBypass(false);
        eq.setGlobalGain(-6.0f);
        eq.prepare(format(kRate, 4));
        Stream impulse(2, 1 << 15);
        impulse.pairs[0][0] = 0.5f;
        impulse.pairs[1][1] = 0.25f; // the other pair's right side
        run(eq, impulse);
        for (const double hz : {40.0, 130.0, 1000.0, 7000.0, 15000.0}) {
            double expected = -6;
            for (int i = 0; i < bands; ++i)
                expected +=
                    digitalDb(designBiquad(graphicBand(i), i % 3 ? 9 : -6, kRate), hz, kRate);
            Complex sums[2];
            for (std::size_t n = 0; n < 1 << 15; ++n) {
                const Complex turn = std::polar(1.0, -2 * pi * hz / kRate * static_cast<double>(n));
                sums[0] += turn * static_cast<double>(impulse.pairs[0][2 * n]);
                sums[1] += turn * static_cast<double>(impulse.pairs[1][2 * n + 1]);
            }
            EXPECT_NEAR(decibels(std::abs(sums[0]) / 0.5), expected, 0.002) << bands << ' ' << hz;
            EXPECT_NEAR(decibels(std::abs(sums[1]) / 0.25), expected, 0.002) << bands << ' ' << hz;
        }
    }
}

TEST(EqUnit, WideAndPortableCodeGiveTheSameSamples) {
    std::vector<float> outputs[2];
    for (const bool wide : {false, true}) {
        EqUnit eq(10);
        prepareFlat(eq, 48000);
        eq.useWideVectors(wide);
        Stream stream = Stream::noise(1, 20000, 0.2f);
        const float gains[10] = {6, 4, -3, 2, -2, 3, -4, 2, 5, 6};
        run(eq, stream, {{100, [&] { eq.rampGains(gains, 8, 720); }}});
        outputs[wide ? 1 : 0] = stream.pairs[0];
    }
    for (std::size_t i = 0; i < outputs[0].size(); ++i)
        ASSERT_NEAR(outputs[0][i], outputs[1][i], 1e-6f) << i;
}

TEST(EqUnit, TakesNewGainsAtOnceAndYetWithoutSplatter) {
    constexpr int kRate = 48000;
    constexpr int kFrames = 1 << 15;
    constexpr int kAt = kFrames / 2 - 2880;
    using Gains = std::array<float, 10>;
    constexpr Gains kFlat{};
    constexpr Gains kBowl{6, 5, 4, 2, 0, -1, 0, 2, 4, 5};
    constexpr Gains kHill{-2, -1, 0, 3, 5, 5, 3, 1, 0, -2};
    struct {
        const char* name;
        Gains from, to;
        int glides;  // of 720 frames each
        double most; // splatter, dB
    } const rows[] = {
        {"1 dB", kFlat, {0, 0, 0, 0, 0, 1}, 1, -88},
        {"6 dB", kFlat, {0, 0, 0, 0, 0, 6}, 4, -88},
        {"a cut taken back", {0, 0, 0, 0, 0, -12}, kFlat, 4, -82},
        {"a preset", kFlat, kBowl, 4, -86},
        {"another", kBowl, kHill, 4, -82},
        {"off", kHill, kFlat, 4, -82},
    };
    for (const auto& row : rows)
        for (const double hz : {100.0, 997.0, 5000.0}) {
            EqUnit eq(10);
            double loudest = 0; // of both settings, at the tone
            for (int i = 0; i < 10; ++i)
                eq.setBand(i, graphicBand(i, row.from[static_cast<std::size_t>(i)]));
            for (const Gains& gains : {row.from, row.to}) {
                double db = 0;
                for (int i = 0; i < 10; ++i)
                    db += analogDb(graphicBand(i),
                                   static_cast<double>(gains[static_cast<std::size_t>(i)]), hz);
                loudest = std::max(loudest, 0.1 * std::pow(10, db / 20));
            }
            eq.setBypass(false);
            eq.prepare(format(kRate));
            Stream stream = Stream::ofMono(quorel::test::sine(0.1, hz, kRate, kFrames));
            const auto hasArrived = [&] {
                Gains gains;
                for (int i = 0; i < 10; ++i)
                    gains[static_cast<std::size_t>(i)] = eq.gain(i);
                return gains == row.to;
            };
            run(eq, stream,
                {{kAt, [&] { eq.setGains(row.to); }},
                 {kAt + 720 * row.glides - 1, [&] { EXPECT_FALSE(hasArrived()) << row.name; }},
                 {kAt + 720 * row.glides, [&] { EXPECT_TRUE(hasArrived()) << row.name; }}});
            EXPECT_LE(quorel::test::splatterDb(stream.left(), kRate, hz, loudest, 300), row.most)
                << row.name << ' ' << hz;
        }
}

TEST(EqUnit, FollowsAGoalThatMovesOn) {
    EqUnit eq(2);
    prepareFlat(eq, 48000);
    Events events;
    float goal = 0;
    for (int i = 0; i < 24; ++i) // half a dB every 16 ms
        events.emplace_back(768 * i, [&] {
            EXPECT_EQ(eq.gain(0), goal); // it has come to where it was sent
            eq.setGain(0, goal += 0.5f);
        });
    for (int i = 24; i < 36; ++i) // a flick of 24 dB
        events.emplace_back(768 * i, [&] { eq.setGain(0, goal -= 2); });
    events.emplace_back(768 * 36, [&] {
        EXPECT_LT(eq.gain(0), 4) << "it follows the flick";
        eq.setGain(0, goal); // a repetition does not hold it up
    });
    events.emplace_back(768 * 35 + 5760, [&] { EXPECT_EQ(eq.gain(0), -12); });
    Stream stream(1, 48000);
    run(eq, stream, events);
}

} // namespace
} // namespace quorel::rt::test
