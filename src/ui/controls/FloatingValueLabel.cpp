#include "ui/controls/FloatingValueLabel.h"

#include "ui/controls/Bubble.h"
#include "ui/theme/BasePainter.h"
#include "ui/theme/Theme.h"

#include <QFontMetricsF>

namespace quorel {

namespace {
constexpr double kHeight = 26; // with the tip
constexpr double kTip = 5;
constexpr double kGap = 8; // from the middle of the handle
} // namespace

FloatingValueLabel::FloatingValueLabel(Clock& clock, QWidget* target)
    : QWidget(target->window())
    , clock_(clock)
    , target_(target) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    hide();
}

void FloatingValueLabel::showValue(const QString& text, QPointF at) {
    if (!target_->isVisible())
        return;
    // The target may have been put into its window since.
    if (parentWidget() != target_->window())
        setParent(target_->window());
    text_ = text;
    place(at);
    show();
    raise();
    update();
    timer_ = clock_.startTimer(kShown, Clock::Repeat::Once, [this] { hide(); });
}

void FloatingValueLabel::place(QPointF at) {
    const double width =
        QFontMetricsF(Theme::font(Theme::TextRole::Strong)).horizontalAdvance(text_) + 20;
    resize(px(QSizeF(std::max(width, 36.0), kHeight)));
    const QPoint tip = target_->mapTo(parentWidget(), at.toPoint());
    const int room = std::max(0, parentWidget()->width() - this->width());
    const int left = std::clamp(tip.x() - this->width() / 2, 0, room);
    const int above = tip.y() - px(kGap) - height();
    below_ = above < 0;
    move(left, below_ ? tip.y() + px(kGap) : above);
    tip_ = (tip.x() - left) / uiScale();
}

void FloatingValueLabel::paintEvent(QPaintEvent*) {
    BasePainter painter(this);
    const QRectF area = baseRect(*this).adjusted(0.5, 0.5, -0.5, -0.5);
    paintBubble(painter, bubble(area, 5, below_ ? TipSide::Up : TipSide::Down, tip_, kTip));
    painter.setPen(Theme::lcd);
    painter.setFont(Theme::font(Theme::TextRole::Strong));
    painter.drawText(area.adjusted(0, below_ ? kTip : 0, 0, below_ ? 0 : -kTip), Qt::AlignCenter,
                     text_);
}

} // namespace quorel
