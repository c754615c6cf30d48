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

QFont textFont() {
    return Theme::font(Theme::TextRole::Title);
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
QPixmap MarqueeLabel::wholeText() const {
    const QRectF area(0, 0, baseRect(*this).width() + path_.excess + 1, baseRect(*this).height());
    QPixmap picture(QSizeF(area.size() * uiScale() * devicePixelRatioF()).toSize());
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
    const double ratio = devicePixelRatioF();
    const double unit = uiScale() * ratio;
    const QSize area = size() * ratio;
    const int shift = qRound(offset_ * unit);
    const int edge = std::min(qRound(kFade * unit), area.width() / 2);
    QPainter painter(this);
    const auto place = [&](int x) { return QPointF(x / ratio, 0); };
    painter.drawPixmap(place(edge), moving_,
                       QRect(shift + edge, 0, area.width() - 2 * edge, area.height()));
    const int right = area.width() - edge;
    painter.drawPixmap(place(0), edgeAt({shift, 0, edge, area.height()}, true, offset_));
    painter.drawPixmap(place(right), edgeAt({shift + right, 0, edge, area.height()}, false,
                                            path_.excess - offset_));
}

/// A piece of the text that fades out to one side, the more of it is hidden there; over the first
/// bit of the way, not at once.
QPixmap MarqueeLabel::edgeAt(const QRect& piece, bool isLeft, double hidden) const {
    QPixmap picture = moving_.copy(piece);
    const QRectF area(QPointF(0, 0), picture.deviceIndependentSize());
    QLinearGradient gradient(isLeft ? area.topLeft() : area.topRight(),
                             isLeft ? area.topRight() : area.topLeft());
    gradient.setColorAt(0, Theme::faded(Qt::black, 1 - std::min(1.0, hidden / kFade)));
    gradient.setColorAt(1, Qt::black);
    QPainter painter(&picture);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    painter.fillRect(area, gradient);
    return picture;
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
