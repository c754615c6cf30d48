#include "ui/controls/MarqueeLabel.h"

#include "ui/theme/BasePainter.h"
#include "ui/theme/Motion.h"

#include <QEvent>
#include <QFontMetricsF>
#include <QLinearGradient>

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
    colour_ = colour;
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

void MarqueeLabel::paintEvent(QPaintEvent*) {
    BasePainter painter(this);
    const QRectF area = baseRect(*this);
    const QFont font = Theme::font(role_);
    painter.setFont(font);
    const bool tooLong = path_.excess > 0;
    const QColor ink = isEnabled() ? colour_ : Theme::faded(colour_, 0.5);
    painter.setPen(ink);
    if (tooLong && !timer_) {
        painter.drawText(area, Qt::AlignVCenter | Qt::AlignLeft,
                         QFontMetricsF(font).elidedText(text_, Qt::ElideRight, area.width()));
        return;
    }
    if (tooLong) {
        // Fades in over the first bit of the way, not at once.
        const double left = std::min(1.0, offset_ / kFade);
        const double right = std::min(1.0, (path_.excess - offset_) / kFade);
        const double fade = std::min(0.5, kFade / area.width());
        const double opacity = static_cast<double>(ink.alphaF());
        QLinearGradient gradient(area.topLeft(), area.topRight());
        gradient.setColorAt(0, Theme::faded(ink, opacity * (1 - left)));
        gradient.setColorAt(fade, ink);
        gradient.setColorAt(1 - fade, ink);
        gradient.setColorAt(1, Theme::faded(ink, opacity * (1 - right)));
        painter.setPen(QPen(QBrush(gradient), 1));
    }
    painter.drawText(area.adjusted(-offset_, 0, std::max(0.0, path_.excess) + 1, 0),
                     Qt::AlignVCenter | Qt::AlignLeft, text_);
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
}

} // namespace quorel
