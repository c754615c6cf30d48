#include "ui/controls/LcdDigits.h"

#include "ui/controls/SevenSegments.h"
#include "ui/theme/BasePainter.h"
#include "ui/theme/Glow.h"
#include "ui/theme/Surfaces.h"
#include "ui/theme/Theme.h"

namespace quorel {

namespace {

constexpr QSizeF kSize(118, 44);
constexpr double kMargin = 5; // for the glow

/// Whether each character of the text, the last in the last place, has room there.
bool hasRoom(const QString& places, const QString& text) {
    const qsizetype first = places.size() - text.size();
    for (qsizetype index = 0; first >= 0 && index < text.size(); ++index) {
        const QLatin1Char colon(':');
        if ((text[index] == colon) != (places[first + index] == colon))
            return false;
    }
    return first >= 0;
}

/// The digits of which the display is made: the smallest set that has room for the text.
QString placesFor(const QString& text) {
    for (const char* places : {"88:88", "-88:88", "-8:88:88", "-88:88:88"}) {
        QString set = QString::fromLatin1(places);
        if (hasRoom(set, text))
            return set;
    }
    return text;
}

/// From the digits' own coordinates into the widget's base units.
QTransform placement(const QRectF& area, const QString& places) {
    using namespace sevensegments;
    const QSizeF room = area.size().shrunkBy(QMarginsF(kMargin, kMargin, kMargin, kMargin));
    // Sized for a sign and four digits; only times of an hour and more are smaller.
    const double width = std::max(widthOf(places), widthOf(QStringLiteral("-88:88")));
    const double scale = std::min(room.width() / width, room.height() / kDigitHeight);
    const double left = area.right() - kMargin - widthOf(places) * scale;
    const double top = area.center().y() - kDigitHeight * scale / 2;
    return QTransform::fromScale(scale, scale) * QTransform::fromTranslate(left, top);
}

QImage clearImage(const QSize& pixels) {
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

QImage imageOf(const QPainterPath& shape, const QSize& pixels) {
    QImage image = clearImage(pixels);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(shape, Theme::lcd);
    return image;
}

/// What is lit, with its glow, over the segments that are not. Of whole images, as Qt hands
/// translucent shapes out to threads piece by piece.
QPixmap pictureOf(const QPainterPath& lit, const QPainterPath& all, double dark,
                  double pixelsPerUnit, const QSize& pixels) {
    const QImage light = imageOf(lit, pixels);
    const int radius = std::max(2, qRound(3.2 * pixelsPerUnit));
    QImage image = clearImage(pixels);
    QPainter painter(&image);
    painter.setOpacity(dark);
    painter.drawImage(0, 0, imageOf(all, pixels));
    painter.setOpacity(0.85);
    painter.drawImage(0, 0, glowOf(light, Theme::lcd, radius));
    painter.setOpacity(1);
    painter.drawImage(0, 0, light);
    painter.end();
    return QPixmap::fromImage(image);
}

} // namespace

LcdDigits::LcdDigits(QWidget* parent)
    : QAbstractButton(parent) {
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setCursor(Qt::PointingHandCursor);
}

void LcdDigits::showTime(const QString& time) {
    if (time_ == time)
        return;
    time_ = time;
    setAccessibleDescription(time);
    update();
}

QSize LcdDigits::sizeHint() const {
    return px(kSize);
}

void LcdDigits::renewPicture(double dark) {
    const double ratio = devicePixelRatioF();
    const double pixelsPerUnit = uiScale() * ratio;
    const QString places = placesFor(time_);
    const QTransform toDevice =
        placement(baseRect(*this), places) * QTransform::fromScale(pixelsPerUnit, pixelsPerUnit);
    const Shown now{time_, dark, ratio, toDevice};
    if (shown_ == now)
        return;
    shown_ = now;
    const auto shape = [&](const QString& text) {
        return toDevice.map(sevensegments::shapeOf(text, places));
    };
    picture_ = pictureOf(shape(time_.rightJustified(places.size())), shape(places), dark,
                         toDevice.m11(), (QSizeF(size()) * ratio).toSize());
    picture_.setDevicePixelRatio(ratio);
}

void LcdDigits::paintEvent(QPaintEvent*) {
    const ControlState state = stateOf(*this);
    renewPicture(state.hovered ? 0.10 : 0.065);
    BasePainter painter(this);
    painter.save();
    painter.resetTransform();
    painter.setOpacity(state.enabled ? 1 : 0.35);
    painter.drawPixmap(0, 0, picture_);
    painter.restore();
    if (state.focused)
        paintFocusRing(painter, baseRect(*this).adjusted(1.5, 1.5, -1.5, -1.5), 5);
}

} // namespace quorel
