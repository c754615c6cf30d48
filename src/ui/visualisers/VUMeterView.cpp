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
    for (const QRect& place : {left, right}) {
        painter.save();
        painter.setClipRect(place); // the drawing's soft edges reach beyond it
        dial.render(&painter, place);
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
    const auto stroke = [&](const QLineF& along, double width, QColor colour) {
        painter.setPen(QPen(colour, width * unit, Qt::SolidLine, Qt::FlatCap));
        painter.drawLine(along);
    };
    const QLineF shadow = line.translated(1.8 * unit, 2 * unit);
    for (const double width : {5.0, 3.8, 2.6, 1.4}) { // soft at its edges
        stroke(shadow, width, faded(Qt::black, 0.06));
    }
    const QColor colour =
        db > 0 ? Theme::detail::colour(0.75, 0.16, 0.10) : Theme::detail::colour(0.12, 0.11, 0.09);
    stroke(line, kNeedleWidth, dimmed(colour, dimming(brightness)));
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
