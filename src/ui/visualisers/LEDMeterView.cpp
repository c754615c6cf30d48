#include "ui/visualisers/LEDMeterView.h"

#include "ui/theme/Theme.h"
#include "ui/visualisers/Light.h"

#include <QLinearGradient>
#include <algorithm>

namespace quorel {

namespace {

constexpr double kMargin = 3; // above and below the rows
constexpr double kGap = 2;    // between them
constexpr double kGlowSigma = 1.6;

QLinearGradient downwards(const QRectF& box, QColor colour,
                          std::initializer_list<std::pair<double, double>> opacities) {
    QLinearGradient gradient(box.topLeft(), box.bottomLeft());
    for (const auto& [position, opacity] : opacities) {
        gradient.setColorAt(position, Theme::faded(colour, opacity));
    }
    return gradient;
}

void drawOff(QPainter& painter, const QRectF& box, double unit, QColor colour) {
    painter.setBrush(downwards(box, colour, {{0, 0.05}, {0.5, 0.14}, {1, 0.07}}));
    painter.drawRoundedRect(box, 2 * unit, 2 * unit);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(Theme::faded(Qt::black, 0.6), 0.6 * unit));
    painter.drawRoundedRect(box, 2 * unit, 2 * unit);
}

void drawOn(QPainter& painter, const QRectF& box, double unit, QColor colour, double brightness) {
    painter.setBrush(downwards(
        box, colour, {{0, brightness * 0.72}, {0.35, brightness}, {1, brightness * 0.62}}));
    painter.drawRoundedRect(box, 2 * unit, 2 * unit);
    const QRectF shine(0.2 * box.width(), 0.12 * box.height(), 0.6 * box.width(),
                       0.28 * box.height());
    const double radius = std::min(shine.width(), shine.height()) / 2;
    painter.setBrush(Theme::faded(Qt::white, brightness * 0.32));
    painter.drawRoundedRect(shine, radius, radius);
}

const Sprite& segmentOf(SpriteCache& sprites, QSize size, QColor colour, bool on) {
    return sprites.get(colour, size, on, [&] {
        const double unit = sprites.key().unit;
        const double brightness = sprites.key().brightness;
        const QRectF box(QPointF(), size);
        if (!on) {
            return glowing(
                size, unit, [](QPainter&) {},
                [&](QPainter& painter) { drawOff(painter, box, unit, colour); });
        }
        const double grown = 0.8 * unit;
        return glowing(
            size, kGlowSigma * unit,
            [&](QPainter& painter) {
                painter.setBrush(Theme::faded(colour, brightness * 0.35));
                painter.drawRoundedRect(box.adjusted(-grown, -grown, grown, grown), 2.5 * unit,
                                        2.5 * unit);
            },
            [&](QPainter& painter) { drawOn(painter, box, unit, colour, brightness); });
    });
}

} // namespace

int LEDMeterView::litCount(double db) const {
    const double lit = (db - ledMin) / (ledMax - ledMin) * segments;
    return static_cast<int>(std::clamp(lit, 0.0, static_cast<double>(segments)));
}

int LEDMeterView::heldSegment(double db) const {
    return db > ledMin + 0.5 ? std::max(0, litCount(db) - 1) : -1;
}

QColor LEDMeterView::colourOf(int segment) const {
    const double db = ledMin + (ledMax - ledMin) * (segment + 0.5) / segments;
    if (db >= -2) {
        return Theme::detail::colour(0.95, 0.22, 0.15);
    }
    if (db >= -5) {
        return Theme::detail::colour(0.95, 0.55, 0.15);
    }
    return db >= -10 ? Theme::detail::colour(0.92, 0.88, 0.18)
                     : Theme::detail::colour(0.15, 0.90, 0.35);
}

void LEDMeterView::paint(QPainter& painter, QSizeF size, SpriteCache& sprites) const {
    const PixelFrame frame(painter, size);
    sprites.use({frame.size(), frame.unit(), brightness});
    const double rowHeight = (size.height() - 2 * kMargin - kGap) / 2;
    const double step = (size.width() - 8) / segments;
    const auto drawRow = [&](double y, double level, double hold) {
        const int top = frame.pixels(y);
        const int height = std::max(1, frame.pixels(y + rowHeight) - top);
        const auto draw = [&](int i, bool on) {
            const auto [left, right] = frame.pixelSlot(step * i + 4.5, step, 1.5);
            segmentOf(sprites, {right - left, height}, colourOf(i), on).draw(painter, {left, top});
        };
        for (int i = 0; i < segments; ++i) {
            draw(i, i < litCount(level));
        }
        if (const int held = heldSegment(hold); held >= 0) {
            draw(held, true);
        }
    };
    drawRow(kMargin, leftDb, holdL);
    drawRow(rowHeight + kMargin + kGap, rightDb, holdR);
}

} // namespace quorel
