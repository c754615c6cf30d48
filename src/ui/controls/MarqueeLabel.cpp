#include "ui/controls/MarqueeLabel.h"

#include "ui/theme/BasePainter.h"
#include "ui/theme/Motion.h"

#include <QEvent>
#include <QFontMetricsF>
#include <QLinearGradient>
#include <algorithm>
#include <cmath>

namespace quorel {

namespace {
constexpr double kFade = 14; // how wide the text fades out at an edge that hides more of it
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

void MarqueeLabel::setRole(Theme::TextRole role) {
    role_ = role;
    updateGeometry();
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
    return px(QSizeF(textWidth(), QFontMetricsF(Theme::font(role_)).height() + 2));
}

QSize MarqueeLabel::minimumSizeHint() const {
    return {px(48), sizeHint().height()};
}

double MarqueeLabel::textWidth() const {
    return QFontMetricsF(Theme::font(role_)).horizontalAdvance(text_);
}

void MarqueeLabel::restart() {
    timer_.reset();
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
    timer_ = clock_.startTimer(path_.restLeft(elapsed).value_or(kFrame), Clock::Repeat::Once,
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
    const QFont font = Theme::font(role_);
    painter.setFont(font);
    painter.setPen(ink());
    painter.drawText(area, Qt::AlignVCenter | Qt::AlignLeft,
                     path_.excess > 0
                         ? QFontMetricsF(font).elidedText(text_, Qt::ElideRight, area.width())
                         : text_);
}

/// The whole text, for a part of it to be copied in each frame: drawing it anew costs ten times as
/// much.
QPixmap MarqueeLabel::wholeText() const {
    const QRectF area(0, 0, baseRect(*this).width() + path_.excess + 1, baseRect(*this).height());
    QPixmap picture(QSizeF(area.size() * uiScale() * devicePixelRatioF()).toSize());
    picture.setDevicePixelRatio(devicePixelRatioF());
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(uiScale(), uiScale());
    painter.setFont(Theme::font(role_));
    painter.setPen(ink());
    painter.drawText(area, Qt::AlignVCenter | Qt::AlignLeft, text_);
    return picture;
}

void MarqueeLabel::paintMoving() {
    if (moving_.isNull())
        moving_ = wholeText();
    const double ratio = devicePixelRatioF();
    QPixmap frame(size() * ratio);
    frame.setDevicePixelRatio(ratio);
    frame.fill(Qt::transparent);
    QPainter painter(&frame);
    const double shift = std::round(offset_ * uiScale() * ratio) / ratio;
    painter.drawPixmap(QPointF(-shift, 0), moving_);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    painter.scale(uiScale(), uiScale());
    // Fades in over the first bit of the way, not at once.
    const QRectF area = baseRect(*this);
    const double width = std::min(kFade, area.width() / 2);
    const auto fadeOut = [&](const QRectF& edge, QPointF from, QPointF to, double hidden) {
        QLinearGradient gradient(from, to);
        gradient.setColorAt(0, Theme::faded(Qt::black, 1 - std::min(1.0, hidden / kFade)));
        gradient.setColorAt(1, Qt::black);
        painter.fillRect(edge, gradient);
    };
    fadeOut({area.left(), area.top(), width, area.height()}, area.topLeft(),
            area.topLeft() + QPointF(width, 0), offset_);
    fadeOut({area.right() - width, area.top(), width, area.height()}, area.topRight(),
            area.topRight() - QPointF(width, 0), path_.excess - offset_);
    painter.end();
    QPainter(this).drawPixmap(0, 0, frame);
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
