#include "ui/controls/Switch.h"

#include "ui/theme/BasePainter.h"
#include "ui/theme/Surfaces.h"
#include "ui/theme/Theme.h"

#include <QFontMetricsF>

namespace quorel {

namespace {
constexpr QSizeF kSlot(34, 18);
constexpr double kMargin = 3; // for the focus ring
constexpr double kGap = 8;
} // namespace

Switch::Switch(const QString& text, QWidget* parent)
    : Switch(text, Slot::BeforeText, parent) {}

Switch::Switch(const QString& text, Slot slot, QWidget* parent)
    : QCheckBox(text, parent)
    , slot_(slot) {
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
}

QSize Switch::sizeHint() const {
    const double label =
        QFontMetricsF(Theme::font(Theme::TextRole::Body)).horizontalAdvance(text());
    return px(QSizeF(kSlot.width() + 2 * kMargin + (text().isEmpty() ? 0 : kGap + label),
                     kSlot.height() + 2 * kMargin));
}

void Switch::paintEvent(QPaintEvent*) {
    BasePainter painter(this);
    ControlState state = stateOf(*this);
    state.pressed = isDown();
    const QRectF area = baseRect(*this);
    const bool first = slot_ == Slot::BeforeText;
    const QRectF slot(QPointF(first ? kMargin : area.right() - kMargin - kSlot.width(),
                              area.center().y() - kSlot.height() / 2),
                      kSlot);
    const double radius = slot.height() / 2;
    paintGroove(painter, slot);
    if (isChecked())
        paintGrooveFill(painter, slot.adjusted(1, 1, -1, -1), state.enabled);
    if (state.focused)
        paintFocusRing(painter, slot.adjusted(-1, -1, 1, 1), radius + 1);
    ControlState knob = state;
    knob.focused = false;
    paintKnob(painter,
              {isChecked() ? slot.right() - radius : slot.left() + radius, slot.center().y()},
              radius - 1.5, knob);
    painter.setFont(Theme::font(Theme::TextRole::Body));
    painter.setPen(inkOf({.enabled = state.enabled, .hovered = state.hovered}));
    painter.drawText(first ? area.adjusted(slot.right() + kGap, 0, 0, 0) : area,
                     Qt::AlignVCenter | Qt::AlignLeft, text());
}

} // namespace quorel
