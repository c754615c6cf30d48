#include "ui/controls/ModeRow.h"

#include "ui/theme/BasePainter.h"
#include "ui/theme/Surfaces.h"
#include "ui/theme/Theme.h"

#include <QFontMetricsF>

namespace quorel {

namespace {
constexpr double kHeight = 32;
constexpr double kSides = 10;
constexpr double kIcon = 18;
constexpr double kCheck = 14;
constexpr double kGap = 10;
} // namespace

ModeRow::ModeRow(Icon icon, const QString& title, QWidget* parent)
    : QAbstractButton(parent)
    , icon_(icon) {
    setText(title);
    setCheckable(true);
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize ModeRow::sizeHint() const {
    const double title =
        QFontMetricsF(Theme::font(Theme::TextRole::Strong)).horizontalAdvance(text());
    return px(QSizeF(2 * kSides + kIcon + 2 * kGap + title + kCheck, kHeight));
}

void ModeRow::paintEvent(QPaintEvent*) {
    BasePainter painter(this);
    ControlState state = stateOf(*this);
    state.pressed = isDown();
    state.lit = isChecked();
    const QRectF area = baseRect(*this).adjusted(1, 1, -1, -1);
    if (state.pressed || state.hovered) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(state.pressed ? Theme::panelBlack : Theme::faded(Theme::steelLight, 0.75));
        painter.drawRoundedRect(crisp(painter, area), 5, 5);
    }
    if (state.focused)
        paintFocusRing(painter, area.adjusted(1, 1, -1, -1), 4);
    const QRectF inside = area.adjusted(kSides, 0, -kSides, 0);
    const QColor ink = inkOf(state);
    drawRaisedIcon(painter, icon_,
                   QRectF(inside.left(), inside.center().y() - kIcon / 2, kIcon, kIcon), ink,
                   state.lit && state.enabled);
    painter.setFont(Theme::font(state.lit ? Theme::TextRole::Strong : Theme::TextRole::Body));
    painter.setPen(ink);
    painter.drawText(inside.adjusted(kIcon + kGap, 0, -kCheck - kGap, 0),
                     Qt::AlignVCenter | Qt::AlignLeft, text());
    if (state.lit)
        drawIcon(painter, Icon::Checkmark,
                 QRectF(inside.right() - kCheck, inside.center().y() - kCheck / 2, kCheck, kCheck),
                 ink);
}

} // namespace quorel
