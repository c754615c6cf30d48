#include "ui/visualisers/VUMeterView.h"

#include "ui/theme/Theme.h"
#include "ui/visualisers/Light.h"

#include <QPainterPath>
#include <QSvgRenderer>
#include <QtMath>
#include <algorithm>

static void loadResources() {
    Q_INIT_RESOURCE(visualisers);
}

namespace quorel {

namespace {

constexpr double kGap = 4;   // between the gauges
constexpr double kFrame = 3; // of the dial's own frame, which hides the needle
constexpr double kNeedleWidth = 1.6;

/// The channel's letter in the dial's outer upper corner, in the dial's own units.
QPainterPath channelMark(bool isRight) {
    QPainterPath letter;
    if (isRight) {
        letter.moveTo(191, 16);
        letter.lineTo(191, 10);
        letter.lineTo(193.2, 10);
        letter.cubicTo(195.8, 10, 195.8, 13.2, 193.2, 13.2);
        letter.lineTo(191, 13.2);
        letter.moveTo(193, 13.2);
        letter.lineTo(195.2, 16);
    } else {
        letter.moveTo(11, 10);
        letter.lineTo(11, 16);
        letter.lineTo(14.6, 16);
    }
    return letter;
}

void drawLine(QPainter& painter, const QLineF& line, double width, QColor colour) {
    painter.setPen(QPen(colour, width, Qt::SolidLine, Qt::FlatCap));
    painter.drawLine(line);
}

/// The needle's shadow, soft at its edges. Qt hands translucent strokes out to threads piece by
/// piece, which costs more than the strokes; so opaque ones draw what becomes the transparency.
QImage shadowOf(const QLineF& needle, QSize size, double unit) {
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(Qt::black);
    {
        QPainter painter(&picture);
        painter.setRenderHint(QPainter::Antialiasing);
        double light = 1;
        for (const double width : {5.0, 3.8, 2.6, 1.4}) {
            light *= 0.94;
            const int alpha = qRound(255 * (1 - light));
            drawLine(painter, needle.translated(1.8 * unit, 2 * unit), width * unit,
                     QColor(alpha, alpha, alpha));
        }
    }
    for (int y = 0; y < size.height(); ++y) {
        auto* const pixels = reinterpret_cast<QRgb*>(picture.scanLine(y));
        std::transform(pixels, pixels + size.width(), pixels,
                       [](QRgb pixel) { return qRgba(0, 0, 0, qBlue(pixel)); });
    }
    picture.reinterpretAsFormat(QImage::Format_ARGB32_Premultiplied);
    return picture;
}

} // namespace

const QImage& VUFaces::picture(const SpriteKey& key, QRect left, QRect right) {
    if (key == key_ && !picture_.isNull()) {
        return picture_;
    }
    key_ = key;
    loadResources();
    QSvgRenderer dial(QStringLiteral(":/visualisers/VUFace.svg"));
    dial.setAspectRatioMode(Qt::IgnoreAspectRatio);
    picture_ = QImage(key.size, QImage::Format_ARGB32_Premultiplied);
    picture_.fill(Qt::transparent);
    QPainter painter(&picture_);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.save();
    painter.setClipRect(left); // the drawing's soft edges reach beyond it
    dial.render(&painter, left);
    painter.restore();
    painter.drawImage(right.topLeft(), picture_.copy(left));
    for (const QRect& place : {left, right}) {
        painter.save();
        painter.translate(place.topLeft());
        painter.scale(place.width() / dial.viewBoxF().width(),
                      place.height() / dial.viewBoxF().height());
        painter.setPen(QPen(Theme::detail::colour(0.25, 0.13, 0.02, 0.75), 1.1, Qt::SolidLine,
                            Qt::RoundCap, Qt::RoundJoin));
        painter.drawPath(channelMark(place == right));
        painter.restore();
    }
    painter.end();
    dim(picture_, dimming(key.brightness));
    return picture_;
}

QLineF VUMeterView::needle(double db, QSizeF gauge) const {
    const double part = std::clamp((db - displayMin) / (displayMax - displayMin), 0.0, 1.0);
    const double angle = qDegreesToRadians(angleStart + (angleEnd - angleStart) * part);
    const double length = imgH * 1.15;
    const QPointF pivot(imgW * 0.5, imgH * 1.35);
    const QPointF tip = pivot + length * QPointF(std::cos(angle), std::sin(angle));
    const double scaleX = gauge.width() / imgW;
    const double scaleY = gauge.height() / imgH;
    return {pivot.x() * scaleX, pivot.y() * scaleY, tip.x() * scaleX, tip.y() * scaleY};
}

void VUMeterView::paintNeedle(QPainter& painter, const QRect& gauge, double unit, double db,
                              double brightness) const {
    const double frameX = kFrame * gauge.width() / imgW;
    const double frameY = kFrame * gauge.height() / imgH;
    const QLineF line = needle(db, gauge.size()).translated(gauge.topLeft());
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setClipRect(QRectF(gauge).adjusted(frameX, frameY, -frameX, -frameY).toAlignedRect(),
                        Qt::IntersectClip);
    painter.drawImage(gauge.topLeft(),
                      shadowOf(line.translated(-gauge.topLeft()), gauge.size(), unit));
    const QColor colour =
        db > 0 ? Theme::detail::colour(0.75, 0.16, 0.10) : Theme::detail::colour(0.12, 0.11, 0.09);
    drawLine(painter, line, kNeedleWidth * unit, dimmed(colour, dimming(brightness)));
    painter.restore();
}

void VUMeterView::paint(QPainter& painter, QSizeF size, double brightness, VUFaces& faces) const {
    const PixelFrame frame(painter, size);
    const QSize gauge(frame.pixels((size.width() - kGap) / 2), frame.size().height());
    if (gauge.isEmpty()) {
        return;
    }
    const QRect left(QPoint(), gauge);
    const QRect right(QPoint(frame.size().width() - gauge.width(), 0), gauge);
    painter.drawImage(0, 0, faces.picture({frame.size(), frame.unit(), brightness}, left, right));
    paintNeedle(painter, left, frame.unit(), leftDb, brightness);
    paintNeedle(painter, right, frame.unit(), rightDb, brightness);
}

} // namespace quorel
