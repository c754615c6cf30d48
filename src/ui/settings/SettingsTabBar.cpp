#include "ui/settings/SettingsTabBar.h"

#include "ui/theme/BasePainter.h"
#include "ui/theme/FocusVisible.h"
#include "ui/theme/Surfaces.h"
#include "ui/theme/Theme.h"

#include <QHoverEvent>

namespace quorel {

namespace {
constexpr QSizeF kTab(88, 60);
constexpr double kIcon = 22;
} // namespace

SettingsTabBar::SettingsTabBar(QWidget* parent)
    : QTabBar(parent) {
    setAttribute(Qt::WA_Hover);
    setDrawBase(false);
    setExpanding(true);
    setUsesScrollButtons(false);
    setElideMode(Qt::ElideNone);
}

void SettingsTabBar::addTab(Icon icon, const QString& name) {
    const int index = QTabBar::addTab(name);
    setTabData(index, static_cast<int>(icon));
}

QSize SettingsTabBar::tabSizeHint(int) const {
    return px(kTab);
}

bool SettingsTabBar::event(QEvent* event) {
    const bool leaves = event->type() == QEvent::HoverLeave;
    if (leaves || event->type() == QEvent::HoverMove) {
        const auto* const hover = static_cast<QHoverEvent*>(event);
        const int now = leaves ? -1 : tabAt(hover->position().toPoint());
        if (std::exchange(hovered_, now) != now)
            update();
    }
    return QTabBar::event(event);
}

void SettingsTabBar::paintEvent(QPaintEvent*) {
    BasePainter painter(this);
    const QRectF all = baseRect(*this);
    QLinearGradient metal(all.topLeft(), all.bottomLeft());
    metal.setColorAt(0, Theme::bg.lighter(128));
    metal.setColorAt(1, Theme::bg);
    painter.fillRect(all, metal);
    paintSeparator(painter, all.bottomLeft() - QPointF(0, 1), all.bottomRight() - QPointF(0, 1));
    for (int index = 0; index < count(); ++index) {
        const QRect pixels = tabRect(index);
        const QRectF area(QPointF(pixels.topLeft()) / uiScale(), QSizeF(pixels.size()) / uiScale());
        const QRectF face = area.adjusted(3, 5, -3, -6);
        ControlState state{.enabled = isEnabled(), .hovered = index == hovered_};
        state.lit = index == currentIndex();
        if (state.lit)
            paintWell(painter, face, 6, Theme::panelBlack);
        else if (state.hovered)
            paintFace(painter, face, 6, state);
        if (state.lit && showsFocusRing(this))
            paintFocusRing(painter, face, 6);
        const QRectF icon(face.center().x() - kIcon / 2, face.top() + 5, kIcon, kIcon);
        drawRaisedIcon(painter, static_cast<Icon>(tabData(index).toInt()), icon, inkOf(state),
                       state.lit);
        painter.setFont(Theme::font(Theme::TextRole::Small));
        painter.setPen(state.lit || state.hovered ? Theme::text : Theme::textDim);
        painter.drawText(face.adjusted(0, kIcon + 6, 0, -3), Qt::AlignCenter, tabText(index));
    }
}

} // namespace quorel
