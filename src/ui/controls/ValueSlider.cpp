#include "ui/controls/ValueSlider.h"

#include "ui/controls/SliderAccessible.h"
#include "ui/theme/BasePainter.h"

#include <QAccessible>
#include <QKeyEvent>
#include <QLocale>
#include <QMouseEvent>
#include <QWheelEvent>

namespace quorel {

namespace {
constexpr double kHandleReach = 8; // base units: a press this close takes the handle as it stands
constexpr double kHandleRoom = 12; // base units: around a handle's middle, with glow and focus ring
constexpr double kVisibleStep = 0.1; // device pixels
constexpr int kWheelNotch = 120;     // QWheelEvent's unit
} // namespace

ValueSlider::ValueSlider(const Range& range, QWidget* parent)
    : QWidget(parent)
    , range_(range)
    , value_(range.rest.value_or(range.lowest))
    , paintedValue_(value_) {
    makeSlidersAccessible();
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
}

QString ValueSlider::valueText() const {
    return valueText_ ? valueText_(value_) : QLocale().toString(value_, 'g', 3);
}

QPointF ValueSlider::handlePosition() const {
    return handleAt(value_) * uiScale();
}

void ValueSlider::setSteps(double step, double page) {
    range_.step = step;
    range_.page = page;
}

void ValueSlider::setValue(double value) {
    if (!editing_)
        change(value);
}

void ValueSlider::edit(double value) {
    const double wanted = snapped(value);
    if (editing_ ||
        qFuzzyCompare(1 + std::clamp(wanted, range_.lowest, range_.highest), 1 + value_))
        return;
    editing_ = true;
    Q_EMIT editingStarted();
    if (change(wanted))
        Q_EMIT valueEdited(value_);
    endEditing();
}

bool ValueSlider::change(double value) {
    const double wanted = std::clamp(value, range_.lowest, range_.highest);
    // Not for a value that is no number, either.
    if (!(wanted < value_ || wanted > value_))
        return false;
    value_ = wanted;
    repaintHandle();
    if (QAccessible::isActive()) {
        QAccessibleValueChangeEvent event(this, value_);
        QAccessible::updateAccessibility(&event);
    }
    return true;
}

/// Only where it moved, and only as far as can be seen: a position creeps along.
void ValueSlider::repaintHandle() {
    const QPointF from = handleAt(paintedValue_) * uiScale();
    const QPointF to = handleAt(value_) * uiScale();
    if (std::hypot(to.x() - from.x(), to.y() - from.y()) * devicePixelRatioF() < kVisibleStep)
        return;
    paintedValue_ = value_;
    const double room = kHandleRoom * uiScale();
    update(QRectF(from, to).normalized().adjusted(-room, -room, room, room).toAlignedRect());
}

void ValueSlider::endEditing() {
    if (!std::exchange(editing_, false))
        return;
    update();
    Q_EMIT editingEnded();
}

/// Nobody has let go of the handle where it is: what acts on that must not.
void ValueSlider::cutOffEditing() {
    if (!std::exchange(editing_, false))
        return;
    update();
    Q_EMIT editingCutOff();
}

void ValueSlider::drag(QPointF pixels) {
    if (change(snapped(detent(valueAt(toBase(pixels) + grip_)))))
        Q_EMIT valueEdited(value_);
}

void ValueSlider::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || editing_)
        return;
    editing_ = true;
    const QPointF away = handleAt(value_) - toBase(event->position());
    grip_ = std::hypot(away.x(), away.y()) <= kHandleReach ? away : QPointF();
    Q_EMIT editingStarted();
    if (grip_.isNull())
        drag(event->position());
    update();
}

void ValueSlider::mouseMoveEvent(QMouseEvent* event) {
    if (editing_)
        drag(event->position());
}

void ValueSlider::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        endEditing();
}

void ValueSlider::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && range_.rest)
        edit(*range_.rest);
    else
        mousePressEvent(event);
}

void ValueSlider::wheelEvent(QWheelEvent* event) {
    const QPoint turn = event->angleDelta();
    // Fine wheels send parts of a notch.
    wheelTurn_ += std::abs(turn.y()) >= std::abs(turn.x()) ? turn.y() : -turn.x();
    const int notches = wheelTurn_ / kWheelNotch;
    wheelTurn_ -= notches * kWheelNotch;
    if (notches != 0)
        edit(value_ + notches * range_.step);
    event->accept();
}

void ValueSlider::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Down:
        return edit(value_ - range_.step);
    case Qt::Key_Right:
    case Qt::Key_Up:
        return edit(value_ + range_.step);
    case Qt::Key_PageDown:
        return edit(value_ - range_.page);
    case Qt::Key_PageUp:
        return edit(value_ + range_.page);
    case Qt::Key_Home:
        return edit(range_.lowest);
    case Qt::Key_End:
        return edit(range_.highest);
    default:
        QWidget::keyPressEvent(event);
    }
}

void ValueSlider::changeEvent(QEvent* event) {
    if (event->type() == QEvent::EnabledChange && !isEnabled())
        cutOffEditing();
    QWidget::changeEvent(event);
}

void ValueSlider::hideEvent(QHideEvent* event) {
    cutOffEditing();
    QWidget::hideEvent(event);
}

} // namespace quorel
