#include "ui/theme/Theme.h"
#include "ui/visualisers/LEDMeterView.h"
#include "ui/visualisers/ScopeView.h"
#include "ui/visualisers/SpectrumView.h"
#include "ui/visualisers/VUMeterView.h"

#include <gtest/gtest.h>

#include <QtMath>
#include <algorithm>
#include <cmath>
#include <vector>

namespace quorel {
namespace {

/// What `paint(painter, size)` draws upon nothing, at `unit` device pixels a unit.
template <class Paint>
QImage painted(QSize size, double unit, Paint paint) {
    QImage image((QSizeF(size) * unit).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(unit);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    paint(painter, QSizeF(size));
    painter.end();
    return image;
}

QImage paintedBars(const std::vector<float>& bars, QSize size, double unit = 1,
                   double brightness = 1) {
    SpriteCache sprites;
    return painted(size, unit, [&](QPainter& painter, QSizeF canvas) {
        SpectrumView{bars}.paint(painter, canvas, brightness, sprites);
    });
}

bool isNear(QColor a, QColor b, int tolerance = 3) {
    return std::abs(a.red() - b.red()) <= tolerance &&
           std::abs(a.green() - b.green()) <= tolerance &&
           std::abs(a.blue() - b.blue()) <= tolerance;
}

/// The highest row of that column with at least that coverage, or -1.
int topOf(const QImage& image, int x, int alpha) {
    for (int y = 0; y < image.height(); ++y) {
        if (qAlpha(image.pixel(x, y)) >= alpha) {
            return y;
        }
    }
    return -1;
}

TEST(SpectrumView, BarsHaveTheirColourAndHeight) {
    const QColor red(245, 71, 46);
    const QColor orange(245, 143, 46);
    const QColor yellow(237, 230, 51);
    const struct {
        float value;
        QColor colour;
        int height;
    } rows[] = {
        {0.42F, Theme::green, 42}, {0.44F, yellow, 44}, {0.62F, yellow, 62}, {0.64F, orange, 64},
        {0.82F, orange, 82},       {0.84F, red, 84},    {1.5F, red, 100},
    };
    for (const double unit : {1.0, 1.5, 2.0}) {
        for (const auto& row : rows) {
            const QImage image = paintedBars({row.value, 0, 0, 0}, QSize(160, 100), unit);
            const auto pixel = [unit](double units) { return static_cast<int>(units * unit); };
            const int middle = pixel(20); // beyond the highlight, where the metal is full
            EXPECT_EQ(topOf(image, middle, 200), pixel(100) - qRound(row.height * unit));
            EXPECT_TRUE(isNear(image.pixelColor(middle, pixel(80)), row.colour, 6))
                << row.value << " " << image.pixelColor(middle, pixel(80)).name().toStdString();
            EXPECT_LT(qAlpha(image.pixel(pixel(39.5), pixel(80))), 100) << "gap before the next";
        }
    }
}

TEST(SpectrumView, SilenceLeavesAPointAndNoBarsLeaveNothing) {
    for (const double unit : {1.0, 2.0}) {
        const QImage silent = paintedBars({0}, QSize(60, 40), unit);
        EXPECT_EQ(topOf(silent, silent.width() / 2, 200), qRound(39 * unit));
    }
    const QImage none = paintedBars({}, QSize(60, 40));
    EXPECT_EQ(topOf(none, 30, 1), -1);
}

TEST(SpectrumView, LooksTheSameHoweverItComesToItsPixels) {
    const std::vector<float> bars{0.1F, 0.5F, 0.7F, 1};
    const QImage onFineScreen = paintedBars(bars, QSize(100, 60), 1.5);
    SpriteCache sprites;
    const QImage enlarged = painted(QSize(200, 120), 1, [&](QPainter& painter, QSizeF) {
        painter.translate(10.3, 20);
        painter.scale(1.5, 1.5);
        SpectrumView{bars}.paint(painter, QSizeF(100, 60), 1, sprites);
    });
    QImage place = enlarged.copy(10, 20, 150, 90);
    place.setDevicePixelRatio(1.5);
    EXPECT_EQ(place, onFineScreen);
    EXPECT_EQ(topOf(enlarged, 9, 1), -1) << "drawn beside the canvas";
}

TEST(SpectrumView, DimmingTakesTheSameFromEveryChannel) {
    const QColor full = paintedBars({0.9F}, QSize(60, 40), 1, 1).pixelColor(35, 30);
    const QColor dark = paintedBars({0.9F}, QSize(60, 40), 1, 0.2).pixelColor(35, 30);
    const auto less = [](int channel) { return std::max(0, channel - qRound(0.28 * 255)); };
    EXPECT_TRUE(isNear(dark, QColor(less(full.red()), less(full.green()), less(full.blue()))))
        << full.name().toStdString() << " became " << dark.name().toStdString();
}

TEST(LEDMeterView, LevelsLightSegments) {
    const struct {
        double level, hold;
        int lit, held;
    } rows[] = {
        {-31, -30, 0, -1},     {-30, -29.6, 0, -1},  {-29.9, -29.4, 0, 0},
        {-28.75, -28, 1, 0},   {-10.01, -9, 15, 15}, {-10, -2.6, 16, 20},
        {-0.01, -0.1, 23, 22}, {0, 0, 24, 23},       {3, 3, 24, 23},
    };
    for (const auto& row : rows) {
        LEDMeterView view;
        view.leftDb = row.level;
        view.rightDb = -60;
        view.holdR = row.hold;
        SpriteCache sprites;
        const QSize size(248, 108); // segments of ten units
        const QImage image = painted(size, 1, [&](QPainter& painter, QSizeF canvas) {
            view.paint(painter, canvas, sprites);
        });
        int lit = 0;
        for (int i = 0; i < view.segments; ++i) {
            const auto isLit = [&](int y) { return qAlpha(image.pixel(10 * i + 9, y)) > 140; };
            EXPECT_EQ(isLit(35), i < row.lit) << row.level << " dB, segment " << i;
            EXPECT_EQ(isLit(85), i == row.held) << row.hold << " dB held, segment " << i;
            lit += isLit(35) ? 1 : 0;
        }
        EXPECT_EQ(lit, row.lit);
    }
}

TEST(LEDMeterView, ColoursFollowTheScaleAndBrightnessFadesThem) {
    const auto colourAt = [](int segment, double brightness) {
        LEDMeterView view;
        view.leftDb = 0;
        view.brightness = brightness;
        SpriteCache sprites;
        return painted(
                   QSize(248, 108), 1,
                   [&](QPainter& painter, QSizeF canvas) { view.paint(painter, canvas, sprites); })
            .pixelColor(10 * segment + 9, 25);
    };
    const QColor green(38, 230, 89);
    const QColor yellow(235, 224, 46);
    const QColor orange(242, 140, 38);
    const QColor red(242, 56, 38);
    for (int i = 0; i < 24; ++i) {
        const QColor expected = i < 16 ? green : i < 20 ? yellow : i < 22 ? orange : red;
        EXPECT_TRUE(isNear(colourAt(i, 1), expected, 4)) << i;
    }
    EXPECT_NEAR(colourAt(5, 0.5).alphaF(), 0.5, 0.15);
}

TEST(VUMeterView, NeedlePointsAtItsLevel) {
    const struct {
        double db, degrees;
        bool isRed;
    } rows[] = {{-40, 212, false},
                {-20, 212, false},
                {-7, 212 + 13 * 116.0 / 23, false},
                {0, 212 + 20 * 116.0 / 23, false},
                {1, 212 + 21 * 116.0 / 23, true},
                {3, 328, true},
                {10, 328, true}};
    for (const auto& row : rows) {
        // Each gauge three times as large as drawn; the needle is what the dials alone lack.
        const auto gauges = [&](double left, double right) {
            VUMeterView view;
            view.leftDb = left;
            view.rightDb = right;
            VUFaces faces;
            return painted(QSize(416, 100), 3, [&](QPainter& painter, QSizeF canvas) {
                view.paint(painter, canvas, 1, faces);
            });
        };
        const QImage image = gauges(-9, row.db);
        const double angle = qDegreesToRadians(row.degrees);
        const auto at = [&](double radius, double aside) {
            const QPointF along(std::cos(angle), std::sin(angle));
            const QPointF spot =
                QPointF(210 + 103, 135) + radius * along + aside * QPointF(-along.y(), along.x());
            return image.pixelColor((spot * 3).toPoint());
        };
        const QColor needle = row.isRed ? QColor(191, 41, 26) : QColor(31, 28, 23);
        for (const double radius : {75.0, 85.0, 113.5}) {
            EXPECT_TRUE(isNear(at(radius, 0), needle)) << row.db << " dB at " << radius;
        }
        EXPECT_FALSE(isNear(at(117, 0), needle, 40)) << row.db << " dB beyond the tip";
        EXPECT_FALSE(isNear(at(86, -1.6), needle, 40)) << row.db << " dB beside the needle";
    }
}

struct Extent {
    double top = 0, bottom = 0;
};

/// Where the trace is more line than glow, in parts of the canvas's height.
Extent traced(const std::vector<float>& samples, double unit = 1) {
    ScopeTrace trace;
    const QImage image = painted(QSize(300, 200), unit, [&](QPainter& painter, QSizeF canvas) {
        ScopeView{samples}.paint(painter, canvas, 1, trace);
    });
    int top = image.height();
    int bottom = 0;
    for (int x = 0; x < image.width(); ++x) {
        for (int y = 0; y < image.height(); ++y) {
            if (qAlpha(image.pixel(x, y)) > 170) {
                top = std::min(top, y);
                bottom = std::max(bottom, y + 1);
            }
        }
    }
    return {1.0 * top / image.height(), 1.0 * bottom / image.height()};
}

TEST(ScopeView, EnlargesSmallSignals) {
    const struct {
        double peak, reach;
    } rows[] = {
        {0, 0}, {0.04, 0.16 * 0.92}, {0.1, 0.4 * 0.92}, {0.5, 0.85 * 0.92}, {1, 0.85 * 0.92}};
    for (const double unit : {1.0, 1.5, 2.0}) {
        for (const auto& row : rows) {
            std::vector<float> wave(256);
            for (std::size_t i = 0; i < wave.size(); ++i) {
                wave[i] =
                    static_cast<float>(row.peak * std::sin(static_cast<double>(i) * M_PI / 64));
            }
            const Extent extent = traced(wave, unit);
            EXPECT_NEAR(extent.top, 0.5 - row.reach / 2, 0.01) << row.peak << " at " << unit;
            EXPECT_NEAR(extent.bottom, 0.5 + row.reach / 2, 0.01) << row.peak << " at " << unit;
        }
    }
    // Positive samples go up.
    EXPECT_NEAR(traced({1, 1}).bottom, 0.5 - 0.85 * 0.92 / 2, 0.01);
}

TEST(ScopeView, LineIsAsWideOnSlopesAndNeedsTwoSamples) {
    for (const std::vector<float>& samples : {std::vector<float>{}, {0.5F}}) {
        EXPECT_GT(traced(samples).top, traced(samples).bottom) << samples.size();
    }
    // A level line and one from corner to corner: light across them adds up to the same.
    const auto across = [](const std::vector<float>& samples, double slope) {
        ScopeTrace trace;
        const QImage image = painted(QSize(184, 200), 1, [&](QPainter& painter, QSizeF canvas) {
            ScopeView{samples}.paint(painter, canvas, 1, trace);
        });
        double sum = 0;
        for (int y = 0; y < image.height(); ++y) {
            sum += std::max(0, qAlpha(image.pixel(92, y)) - 92) / 163.0;
        }
        return sum / std::hypot(1, slope);
    };
    const double slope = 0.85 * 0.92 * 200 / 184;
    EXPECT_NEAR(across({0, 0}, 0), 1.3, 0.1);
    EXPECT_NEAR(across({1, -1}, slope), 1.3, 0.15);
}

} // namespace
} // namespace quorel
