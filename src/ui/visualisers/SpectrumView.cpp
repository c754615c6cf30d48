#include "ui/visualisers/SpectrumView.h"

#include "ui/theme/Theme.h"
#include "ui/visualisers/Light.h"

#include <QLinearGradient>
#include <algorithm>
#include <cmath>

namespace quorel {

namespace {

constexpr double kGlowSigma = 2;
constexpr double kRadius = 3;

QColor colourOf(float value) {
    if (value > 0.82F) {
        return Theme::detail::colour(0.96, 0.28, 0.18);
    }
    if (value > 0.62F) {
        return Theme::detail::colour(0.96, 0.56, 0.18);
    }
    return value > 0.42F ? Theme::detail::colour(0.93, 0.90, 0.20) : Theme::green;
}

/// `box` in pixels, `unit` pixels a point.
void drawBody(QPainter& painter, const QRectF& box, double unit, QColor colour) {
    QLinearGradient metal(box.topLeft(), box.topRight());
    metal.setColorAt(0, Theme::faded(colour, 0.55));
    metal.setColorAt(0.5, colour);
    metal.setColorAt(1, Theme::faded(colour, 0.7));
    painter.setBrush(metal);
    painter.drawRoundedRect(box, kRadius * unit, kRadius * unit);

    const QRectF stripe(box.width() * 0.12, 0, box.width() * 0.24, box.height());
    painter.setBrush(Theme::faded(Qt::white, 0.22));
    painter.drawRoundedRect(stripe, stripe.width() / 2, stripe.width() / 2);

    const QRectF cap(0, 0, box.width(), std::min(box.height(), 3 * unit));
    painter.setBrush(Theme::faded(Qt::white, 0.5));
    painter.drawRoundedRect(cap, 1.5 * unit, 1.5 * unit);
}

const Sprite& barOf(SpriteCache& sprites, int width, int height, QColor colour) {
    const QSize size(width, height);
    return sprites.get(colour, size, true, [&] {
        const QRectF box(QPointF(), size);
        const double unit = sprites.key().unit;
        Sprite sprite = glowing(
            size, kGlowSigma * unit,
            [&](QPainter& painter) {
                painter.setBrush(Theme::faded(colour, 0.35));
                painter.drawRoundedRect(box, kRadius * unit, kRadius * unit);
            },
            [&](QPainter& painter) { drawBody(painter, box, unit, colour); });
        dim(sprite.image, dimming(sprites.key().brightness));
        return sprite;
    });
}

/// Draws a bar on that many pixels, standing on the canvas's floor.
void drawBar(QPainter& painter, SpriteCache& sprites, int left, QSize size, QColor colour) {
    const int floor = sprites.key().size.height();
    const int width = size.width();
    // Far enough from its ends a bar looks the same in every row: tall ones share the head of one
    // sprite and the rest of another.
    const int head = static_cast<int>(std::ceil(kRadius * sprites.key().unit)) +
                     barOf(sprites, width, 1, colour).margin;
    if (size.height() < 2 * head) {
        barOf(sprites, width, size.height(), colour).draw(painter, {left, floor - size.height()});
        return;
    }
    const Sprite& top = barOf(sprites, width, 2 * head, colour);
    const Sprite& rest = barOf(sprites, width, std::max(floor, 2 * head), colour);
    const int cut = top.margin + head;
    const QPoint corner(left - top.margin, floor - size.height() - top.margin);
    painter.drawImage(corner, top.image, QRect(0, 0, top.image.width(), cut));
    const int shown = rest.margin + size.height() - head;
    painter.drawImage(corner + QPoint(0, cut), rest.image,
                      QRect(0, rest.image.height() - shown, rest.image.width(), shown));
}

} // namespace

void SpectrumView::paint(QPainter& painter, QSizeF size, double brightness,
                         SpriteCache& sprites) const {
    if (bars.empty()) {
        return;
    }
    const PixelFrame frame(painter, size);
    sprites.use({frame.size(), frame.unit(), brightness});
    const double slot = size.width() / static_cast<double>(bars.size());
    const double width = std::max(slot - 2, 1.0);
    double x = 1;
    for (const float bar : bars) {
        const float value = std::clamp(bar, 0.0F, 1.0F);
        const auto [left, right] = frame.pixelSlot(x, slot, slot - width);
        const int height =
            std::max(1, frame.pixels(std::max(size.height() * static_cast<double>(value), 1.0)));
        drawBar(painter, sprites, left, {right - left, height}, colourOf(value));
        x += slot;
    }
}

} // namespace quorel
