#include "ui/controls/PopoverPanel.h"

#include "ui/controls/Bubble.h"
#include "ui/theme/BasePainter.h"

#include <QBitmap>
#include <QEvent>
#include <QLayout>
#include <QMouseEvent>
#include <QScreen>

namespace quorel {

namespace {
constexpr double kTip = 8;
constexpr double kPadding = 12;
} // namespace

PopoverPanel::PopoverPanel(QWidget* parent)
    : QWidget(parent, Qt::Popup | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint) {
    setAttribute(Qt::WA_TranslucentBackground);
}

void PopoverPanel::setMargins() {
    // The arrow is part of the area, on the side that the place on the screen decides.
    layout()->setContentsMargins(px(kPadding), px(kPadding + (above_ ? 0 : kTip)), px(kPadding),
                                 px(kPadding + (above_ ? kTip : 0)));
}

void PopoverPanel::popUpAt(QWidget* button) {
    button_ = button;
    above_ = false;
    place();
    show();
    focusNextChild();
}

void PopoverPanel::place() {
    if (!button_ || !layout())
        return;
    setMargins();
    ensurePolished();
    layout()->activate();
    resize(sizeHint());
    const QRect anchor(button_->mapToGlobal(QPoint(0, 0)), button_->size());
    const QRect screen = button_->screen()->availableGeometry();
    const bool above =
        anchor.bottom() + height() > screen.bottom() && anchor.top() - height() >= screen.top();
    if (above != above_) {
        above_ = above;
        setMargins();
    }
    const int left = std::clamp(anchor.center().x() - width() / 2, screen.left(),
                                std::max(screen.left(), screen.right() + 1 - width()));
    move(left, above_ ? anchor.top() - height() : anchor.bottom() + 1);
    tip_ = (anchor.center().x() - left) / uiScale();
    cutOut();
}

QPainterPath PopoverPanel::shape() const {
    return bubble(baseRect(*this).adjusted(0.5, 0.5, -0.5, -0.5), 8,
                  above_ ? TipSide::Down : TipSide::Up, tip_, kTip);
}

/// Without a compositor what is translucent would be black; a little more than the shape is kept,
/// for its smooth edge where there is one.
void PopoverPanel::cutOut() {
    QBitmap kept(size());
    kept.fill(Qt::color0);
    QPainter painter(&kept);
    painter.scale(uiScale(), uiScale());
    painter.setPen(QPen(Qt::color1, 2 / uiScale()));
    painter.setBrush(Qt::color1);
    painter.drawPath(shape());
    painter.end();
    setMask(kept);
}

void PopoverPanel::paintEvent(QPaintEvent*) {
    BasePainter painter(this);
    paintBubble(painter, shape());
}

void PopoverPanel::mousePressEvent(QMouseEvent* event) {
    const bool onButton = button_ && QRect(button_->mapToGlobal(QPoint(0, 0)), button_->size())
                                         .contains(event->globalPosition().toPoint());
    setAttribute(Qt::WA_NoMouseReplay, onButton);
    QWidget::mousePressEvent(event);
}

void PopoverPanel::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::StyleChange && isVisible())
        place();
}

void PopoverPanel::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    Q_EMIT closed();
}

} // namespace quorel
