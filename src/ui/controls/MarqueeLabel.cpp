#include "ui/controls/MarqueeLabel.h"

#include "ui/theme/BasePainter.h"
#include "ui/theme/Motion.h"

#include <QEvent>
#include <QFontMetricsF>
#include <algorithm>
#include <cmath>

namespace quorel {

namespace {

constexpr double kFade = 14; // how wide the text fades out at an edge that hides more of it

QFont textFont() {
    return Theme::font(Theme::TextRole::Title);
}

/// By hand: a painter with a gradient takes ten times as long for these few pixels.
void fadeColumn(QImage& picture, int x, double opacity) {
    const auto share = static_cast<quint32>(std::lround(opacity * 256));
    for (int y = 0; y < picture.height(); ++y) {
        QRgb& pixel = reinterpret_cast<QRgb*>(picture.scanLine(y))[x];
        const quint32 even = ((pixel & 0x00ff00ff) * share >> 8) & 0x00ff00ff;
        const quint32 odd = (pixel >> 8 & 0x00ff00ff) * share & 0xff00ff00;
        pixel = even | odd;
    }
}

} // namespace

MarqueeLabel::MarqueeLabel(Clock& clock, QWidget* parent)
    : QWidget(parent)
    , clock_(clock) {
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

void MarqueeLabel::setText(const QString& text) {
    if (text_ == text)
        return;
    text_ = text;
    setAccessibleName(text);
    restart();
}

void MarqueeLabel::setColour(const QColor& colour) {
    if (colour == colour_)
        return;
    colour_ = colour;
    moving_ = {};
    update();
}

QSize MarqueeLabel::sizeHint() const {
    return px(QSizeF(textWidth(), QFontMetricsF(textFont()).height() + 2));
}

QSize MarqueeLabel::minimumSizeHint() const {
    return {px(48), sizeHint().height()};
}

double MarqueeLabel::textWidth() const {
    return QFontMetricsF(textFont()).horizontalAdvance(text_);
}

void MarqueeLabel::restart() {
    timer_.reset();
    glides_ = false;
    moving_ = {};
    offset_ = 0;
    path_.excess = textWidth() - baseRect(*this).width();
    update();
    if (!isVisible() || path_.excess <= 0 || reducedAnimation())
        return;
    start_ = clock_.now();
    step();
}

void MarqueeLabel::step() {
    const Clock::Duration elapsed = clock_.now() - start_;
    const double offset = path_.offsetAt(elapsed);
    if (offset != offset_) {
        offset_ = offset;
        update();
    }
    const auto rest = path_.restLeft(elapsed);
    if (!rest && glides_)
        return;
    glides_ = !rest;
    timer_ =
        clock_.startTimer(rest.value_or(kFrame), rest ? Clock::Repeat::Once : Clock::Repeat::Always,
                          [this] { step(); });
}

QColor MarqueeLabel::ink() const {
    return isEnabled() ? colour_ : Theme::faded(colour_, 0.5);
}

void MarqueeLabel::paintEvent(QPaintEvent*) {
    if (path_.excess > 0 && timer_) {
        paintMoving();
        return;
    }
    BasePainter painter(this);
    const QRectF area = baseRect(*this);
    const QFont font = textFont();
    painter.setFont(font);
    painter.setPen(ink());
    painter.drawText(area, Qt::AlignVCenter | Qt::AlignLeft,
                     path_.excess > 0
                         ? QFontMetricsF(font).elidedText(text_, Qt::ElideRight, area.width())
                         : text_);
}

/// The whole text, for a part of it to be copied in each frame: drawing it anew costs ten times as
/// much.
QImage MarqueeLabel::wholeText() const {
    const QRectF area(0, 0, baseRect(*this).width() + path_.excess + 1, baseRect(*this).height());
    QImage picture(QSizeF(area.size() * uiScale() * devicePixelRatioF()).toSize(),
                   QImage::Format_ARGB32_Premultiplied);
    picture.setDevicePixelRatio(devicePixelRatioF());
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(uiScale(), uiScale());
    painter.setFont(textFont());
    painter.setPen(ink());
    painter.drawText(area, Qt::AlignVCenter | Qt::AlignLeft, text_);
    return picture;
}

void MarqueeLabel::paintMoving() {
    if (moving_.isNull())
        moving_ = wholeText();
    const double unit = uiScale() * devicePixelRatioF();
    QImage seen =
        moving_.copy(QRect(QPoint(qRound(offset_ * unit), 0), size() * devicePixelRatioF()));
    const int edge = std::min(qRound(kFade * unit), seen.width() / 2);
    // The more text an edge hides the fainter it is; over the first bit of the way, not at once.
    const double left = 1 - std::min(1.0, offset_ / kFade);
    const double right = 1 - std::min(1.0, (path_.excess - offset_) / kFade);
    for (int x = 0; x < edge; ++x) {
        const double inside = (x + 0.5) / edge;
        fadeColumn(seen, x, left + (1 - left) * inside);
        fadeColumn(seen, seen.width() - 1 - x, right + (1 - right) * inside);
    }
    QPainter(this).drawImage(0, 0, seen);
}

void MarqueeLabel::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    restart();
}

void MarqueeLabel::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    timer_.reset();
}

void MarqueeLabel::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    restart();
}

void MarqueeLabel::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::StyleChange || event->type() == QEvent::FontChange)
        restart();
    else if (event->type() == QEvent::EnabledChange)
        moving_ = {};
}

} // namespace quorel
