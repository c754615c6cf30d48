#include "ui/theme/StylePainting.h"

#include "ui/theme/Icons.h"
#include "ui/theme/Theme.h"

#include <QStyleOption>

namespace quorel::stylepainting {

using Theme::faded;

namespace {

constexpr double kRadius = 5;

void fillRounded(QPainter& painter, const QRectF& area, double radius, const QColor& colour) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    painter.drawRoundedRect(crisp(painter, area), radius, radius);
}

/// The text before and after the tab of a menu's item: its title and its shortcut.
std::pair<QString, QString> titleAndShortcut(const QString& text) {
    const qsizetype tab = text.indexOf(QLatin1Char('\t'));
    return tab < 0 ? std::pair{text, QString()} : std::pair{text.left(tab), text.mid(tab + 1)};
}

QRectF squareIn(const QRectF& area, double side, Qt::Alignment edge) {
    const double y = area.center().y() - side / 2;
    if (edge & Qt::AlignLeft)
        return {area.left(), y, side, side};
    if (edge & Qt::AlignRight)
        return {area.right() - side, y, side, side};
    return {area.center().x() - side / 2, y, side, side};
}

} // namespace

void button(QPainter& painter, const QRectF& area, const ControlState& state) {
    const QRectF face = area.adjusted(2, 1, -2, -2);
    if (state.enabled && !state.pressed)
        paintDropShadow(painter, face, kRadius);
    paintFace(painter, face, kRadius, state);
    if (state.focused)
        paintFocusRing(painter, face.adjusted(-0.5, -0.5, 0.5, 0.5), kRadius + 0.5);
}

void field(QPainter& painter, const QRectF& area, const ControlState& state) {
    if (!state.enabled)
        painter.setOpacity(0.5);
    const QRectF well = area.adjusted(1, 1, -1, -1);
    paintWell(painter, well, kRadius, Theme::panelBlack);
    strokeInside(painter, well, kRadius,
                 state.hovered ? Theme::steelLight.lighter(165) : Theme::steelLight.lighter(115));
    if (state.focused)
        paintFocusRing(painter, well, kRadius);
}

void checkBox(QPainter& painter, const QRectF& area, const ControlState& state) {
    const QRectF box = squareIn(area, std::min(area.width(), area.height()) - 1, Qt::AlignHCenter);
    ControlState look = state;
    look.pressed = false;
    if (state.lit)
        paintFace(painter, box, 4, look);
    else
        field(painter, box.adjusted(-0.5, -0.5, 0.5, 0.5),
              {.enabled = state.enabled, .hovered = state.hovered});
    if (state.lit)
        drawRaisedIcon(painter, Icon::Checkmark, box.adjusted(1.5, 1.5, -1.5, -1.5), inkOf(look),
                       state.enabled);
    if (state.pressed)
        fillRounded(painter, box, 4, faded(Theme::green, 0.14));
}

void radioButton(QPainter& painter, const QRectF& area, const ControlState& state) {
    const QRectF ring = squareIn(area, std::min(area.width(), area.height()) - 1, Qt::AlignHCenter);
    paintWell(painter, ring, ring.width() / 2, Theme::panelBlack);
    strokeInside(painter, ring, ring.width() / 2,
                 state.lit && state.enabled ? Theme::greenDim
                 : state.hovered            ? Theme::steelLight.lighter(165)
                                            : Theme::steelLight.lighter(115));
    if (!state.lit)
        return;
    const QPointF centre = ring.center();
    painter.setPen(Qt::NoPen);
    painter.setBrush(faded(inkOf(state), 0.3));
    painter.drawEllipse(centre, ring.width() * 0.36, ring.width() * 0.36);
    painter.setBrush(inkOf(state));
    painter.drawEllipse(centre, ring.width() * 0.22, ring.width() * 0.22);
}

void group(QPainter& painter, const QRectF& area) {
    fillRounded(painter, area, 6, faded(Theme::steel, 0.3));
    strokeInside(painter, area, 6, faded(Theme::steelLight, 0.6));
}

void menuPanel(QPainter& painter, const QRectF& area) {
    const QRectF edge = crisp(painter, area);
    painter.fillRect(edge, Theme::steel.darker(150));
    strokeInside(painter, edge, 0, Theme::steelLight);
}

void menuItem(QPainter& painter, const QStyleOptionMenuItem& option) {
    const QRectF area = InBaseUnits::area(option.rect);
    if (option.menuItemType == QStyleOptionMenuItem::Separator) {
        const double y = area.center().y();
        paintSeparator(painter, {area.left() + 8, y}, {area.right() - 8, y});
        return;
    }
    const ControlState state{.enabled = (option.state & QStyle::State_Enabled) != 0,
                             .hovered = (option.state & QStyle::State_Selected) != 0};
    if (state.hovered && state.enabled)
        fillRounded(painter, area.adjusted(3, 0.5, -3, -0.5), 4, faded(Theme::green, 0.18));
    const QColor ink = inkOf(state);
    const QRectF inside = area.adjusted(8, 0, -10, 0);
    if (option.checkType != QStyleOptionMenuItem::NotCheckable && option.checked)
        drawIcon(painter, Icon::Checkmark, squareIn(inside, 14, Qt::AlignLeft),
                 state.enabled ? Theme::green : ink);
    else if (!option.icon.isNull())
        option.icon.paint(&painter, squareIn(inside, 16, Qt::AlignLeft).toRect());
    const auto [title, shortcut] = titleAndShortcut(option.text);
    const int flags = Qt::AlignVCenter | Qt::TextShowMnemonic | Qt::TextSingleLine;
    QFont font = Theme::font(Theme::TextRole::Body);
    font.setBold(option.menuItemType == QStyleOptionMenuItem::DefaultItem);
    painter.setFont(font);
    painter.setPen(ink);
    painter.drawText(inside.adjusted(20, 0, 0, 0), flags | Qt::AlignLeft, title);
    painter.setPen(state.enabled ? Theme::textDim : ink);
    painter.drawText(inside.adjusted(0, 0, -4, 0), flags | Qt::AlignRight, shortcut);
    if (option.menuItemType == QStyleOptionMenuItem::SubMenu) {
        const QPointF tip(inside.right(), inside.center().y());
        painter.setPen(QPen(ink, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawPolyline(QPolygonF({tip + QPointF(-4, -4), tip, tip + QPointF(-4, 4)}));
    }
}

void menuBarItem(QPainter& painter, const QStyleOptionMenuItem& option) {
    const QRectF area = InBaseUnits::area(option.rect);
    const bool open = option.state & QStyle::State_Sunken;
    const ControlState state{.enabled = (option.state & QStyle::State_Enabled) != 0,
                             .hovered = open || (option.state & QStyle::State_Selected)};
    painter.fillRect(area, Theme::bg);
    if (state.hovered && state.enabled)
        fillRounded(painter, area.adjusted(1, 2, -1, -2), 4,
                    open ? faded(Theme::green, 0.18) : Theme::steel);
    painter.setFont(Theme::font(Theme::TextRole::Body));
    painter.setPen(inkOf(state));
    painter.drawText(area, Qt::AlignCenter | Qt::TextShowMnemonic | Qt::TextSingleLine,
                     option.text);
}

void tab(QPainter& painter, const QStyleOptionTab& option) {
    const QRectF area = InBaseUnits::area(option.rect).adjusted(1, 2, -1, 0);
    const bool chosen = option.state & QStyle::State_Selected;
    const bool hovered = option.state & QStyle::State_MouseOver;
    painter.setClipRect(area, Qt::IntersectClip);
    const QRectF body = crisp(painter, area.adjusted(0, 0, 0, 6));
    fillRounded(painter, body, 6,
                chosen ? Theme::listBlack
                       : (hovered ? Theme::steelLight : Theme::steel.darker(135)));
    strokeInside(painter, body, 6, faded(Theme::steelLight, chosen ? 0.9 : 0.5));
    if (chosen)
        painter.fillRect(crisp(painter, QRectF(area.left() + 6, area.top(), area.width() - 12, 2)),
                         Theme::green);
    if (stateOf(option, qobject_cast<const QWidget*>(option.styleObject)).focused)
        paintFocusRing(painter, area.adjusted(3, 4, -3, -3), 3);
}

void scrollBarSlider(QPainter& painter, const QRectF& area, const ControlState& state) {
    const bool upright = area.height() > area.width();
    const double inset = state.hovered || state.pressed ? 2 : 3;
    const QRectF thumb =
        upright ? area.adjusted(inset, 2, -inset, -2) : area.adjusted(2, inset, -2, -inset);
    const QColor colour =
        state.pressed ? Theme::textDim : Theme::steelLight.lighter(state.hovered ? 140 : 110);
    fillRounded(painter, thumb, std::min(thumb.width(), thumb.height()) / 2, colour);
}

void chevron(QPainter& painter, const QRectF& area, bool upwards, const ControlState& state) {
    const QPointF centre = area.center();
    const double rise = upwards ? -2 : 2;
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(inkOf({.enabled = state.enabled, .hovered = state.hovered}), 1.6,
                        Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(QPolygonF(
        {centre + QPointF(-3.6, -rise), centre + QPointF(0, rise), centre + QPointF(3.6, -rise)}));
}

} // namespace quorel::stylepainting
