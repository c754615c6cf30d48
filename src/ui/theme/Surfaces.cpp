#include "ui/theme/Surfaces.h"

#include "ui/theme/FocusVisible.h"
#include "ui/theme/Theme.h"

#include <QLinearGradient>
#include <QPainterPath>
#include <QRadialGradient>
#include <QStyleOption>
#include <QWidget>

namespace quorel {

using Theme::faded;

namespace {

double pixelsPerUnit(const QPainter& painter) {
    return std::abs(painter.deviceTransform().m11());
}

QPainterPath rounded(const QRectF& rect, double radius) {
    QPainterPath path;
    path.addRoundedRect(rect, radius, radius);
    return path;
}

QLinearGradient downwards(const QRectF& rect, const QColor& top, const QColor& bottom) {
    QLinearGradient gradient(rect.topLeft(), rect.bottomLeft());
    gradient.setColorAt(0, top);
    gradient.setColorAt(1, bottom);
    return gradient;
}

/// A shadow that falls inwards from the edges, deepest at the top: strokes around the shape, the
/// wider the fainter, of which the clip keeps the inner halves.
void paintInnerShadow(QPainter& painter, const QPainterPath& shape, double depth, double strength) {
    constexpr int kSteps = 5;
    painter.save();
    painter.setClipPath(shape, Qt::IntersectClip);
    painter.setBrush(Qt::NoBrush);
    for (int step = 1; step <= kSteps; ++step) {
        painter.setPen(QPen(faded(Qt::black, strength / kSteps), 2 * depth * step / kSteps));
        painter.drawPath(shape.translated(0, depth * 0.35));
    }
    painter.restore();
}

} // namespace

ControlState stateOf(const QWidget& widget) {
    return {.enabled = widget.isEnabled(),
            .hovered = widget.isEnabled() && widget.underMouse(),
            .focused = showsFocusRing(&widget)};
}

ControlState stateOf(const QStyleOption& option, const QWidget* widget) {
    const bool enabled = option.state & QStyle::State_Enabled;
    return {.enabled = enabled,
            .hovered = enabled && (option.state & QStyle::State_MouseOver),
            .pressed = (option.state & QStyle::State_Sunken) != 0,
            .lit = (option.state & QStyle::State_On) != 0,
            .focused = (option.state & QStyle::State_HasFocus) && showsFocusRing(widget)};
}

QRectF crisp(const QPainter& painter, const QRectF& rect) {
    const QTransform& toDevice = painter.deviceTransform();
    const QRectF device = toDevice.mapRect(rect);
    const QPointF topLeft(qRound(device.left()), qRound(device.top()));
    const QPointF bottomRight(std::max(topLeft.x() + 1, std::round(device.right())),
                              std::max(topLeft.y() + 1, std::round(device.bottom())));
    return toDevice.inverted().mapRect(QRectF(topLeft, bottomRight));
}

double hairline(const QPainter& painter) {
    const double scale = pixelsPerUnit(painter);
    return std::max(1.0, std::floor(scale + 0.25)) / scale;
}

void strokeInside(QPainter& painter, const QRectF& rect, double radius, const QColor& colour) {
    const double line = hairline(painter);
    const QRectF middle = crisp(painter, rect).adjusted(line / 2, line / 2, -line / 2, -line / 2);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(colour, line));
    painter.drawRoundedRect(middle, radius - line / 2, radius - line / 2);
}

void paintWell(QPainter& painter, const QRectF& rect, double radius, const QColor& floor) {
    const QRectF edge = crisp(painter, rect);
    const double line = hairline(painter);
    painter.save();
    painter.setPen(Qt::NoPen);
    painter.setBrush(downwards(edge, faded(Qt::black, 0.4), faded(Theme::steelLight, 0.75)));
    painter.drawRoundedRect(edge, radius, radius);
    const QRectF inside = edge.adjusted(line, line, -line, -line);
    const QPainterPath shape = rounded(inside, radius - line);
    painter.fillPath(shape, floor);
    paintInnerShadow(painter, shape, std::min(7.0, rect.height() / 4), 0.85);
    painter.restore();
}

void paintFace(QPainter& painter, const QRectF& rect, double radius, const ControlState& state) {
    const QRectF edge = crisp(painter, rect);
    const double line = hairline(painter);
    QColor top = Theme::steelLight.lighter(state.hovered ? 124 : 104);
    QColor bottom = Theme::steel.darker(state.hovered ? 104 : 122);
    QColor border = Theme::steelLight.lighter(state.hovered ? 160 : 128);
    if (state.lit) {
        top = QColor(state.hovered ? 0x23533c : 0x1b4231);
        bottom = QColor(state.hovered ? 0x163227 : 0x10261c);
        border = Theme::greenDim;
    }
    if (state.pressed) {
        // Tilted away from the light.
        const QColor lower = bottom.darker(115);
        bottom = top.darker(150);
        top = lower;
    }
    painter.save();
    if (!state.enabled)
        painter.setOpacity(painter.opacity() * 0.45);
    const QPainterPath shape = rounded(edge, radius);
    painter.fillPath(shape, downwards(edge, top, bottom));
    if (state.lit && !state.pressed) {
        QRadialGradient light(edge.center(), edge.width() * 0.55);
        light.setColorAt(0, faded(Theme::green, 0.20));
        light.setColorAt(1, faded(Theme::green, 0));
        painter.fillPath(shape, light);
    }
    if (state.pressed) {
        paintInnerShadow(painter, shape, 5, 0.75);
    } else {
        // Light from above catches the upper edge.
        const QRectF bevel = edge.adjusted(line, line, -line, -line);
        painter.setPen(
            QPen(downwards(bevel, faded(Qt::white, state.lit ? 0.10 : 0.16), faded(Qt::white, 0)),
                 line));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(bevel.adjusted(line / 2, line / 2, -line / 2, -line / 2),
                                radius - line * 1.5, radius - line * 1.5);
    }
    strokeInside(painter, edge, radius, faded(border, state.pressed ? 0.5 : 0.75));
    painter.restore();
}

void paintDropShadow(QPainter& painter, const QRectF& rect, double radius) {
    painter.save();
    painter.setPen(Qt::NoPen);
    for (int layer = 0; layer < 4; ++layer) {
        const double grow = 1.6 - 0.6 * layer;
        painter.setBrush(faded(Qt::black, 0.16));
        painter.drawRoundedRect(rect.translated(0, 1.4).adjusted(-grow, -grow, grow, grow),
                                radius + grow, radius + grow);
    }
    painter.restore();
}

void paintFocusRing(QPainter& painter, const QRectF& rect, double radius) {
    const double width = std::max(hairline(painter), 1.5);
    painter.save();
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(faded(Theme::gold, 0.28), width * 2.4));
    painter.drawRoundedRect(rect, radius, radius);
    painter.setPen(QPen(Theme::gold.lighter(122), width));
    painter.drawRoundedRect(rect, radius, radius);
    painter.restore();
}

void paintSeparator(QPainter& painter, const QPointF& from, const QPointF& to) {
    const double line = hairline(painter);
    const bool vertical = from.x() == to.x();
    const QRectF dark = crisp(painter, vertical ? QRectF(from, QSizeF(line, to.y() - from.y()))
                                                : QRectF(from, QSizeF(to.x() - from.x(), line)));
    painter.fillRect(dark, faded(Qt::black, 0.6));
    painter.fillRect(dark.translated(vertical ? line : 0, vertical ? 0 : line),
                     faded(Theme::steelLight, 0.45));
}

void paintGroove(QPainter& painter, const QRectF& rect) {
    const double radius = std::min(rect.width(), rect.height()) / 2;
    paintWell(painter, rect, radius, Theme::panelBlack);
}

void paintGrooveFill(QPainter& painter, const QRectF& rect, bool enabled) {
    const double line = hairline(painter);
    const QRectF inside = crisp(painter, rect).adjusted(line, line, -line, -line);
    if (inside.width() <= 0 || inside.height() <= 0)
        return;
    const bool across = rect.width() > rect.height();
    const double radius = std::min(inside.width(), inside.height()) / 2;
    const QColor colour = enabled ? Theme::green : Theme::textDim.darker(190);
    painter.save();
    painter.setPen(Qt::NoPen);
    if (enabled) {
        painter.setBrush(faded(Theme::green, 0.14));
        painter.drawRoundedRect(rect.adjusted(-1.5, -1.5, 1.5, 1.5), radius + 2, radius + 2);
    }
    // Rounder than flat: darker below (or to the right), with a line of light above.
    QLinearGradient body(inside.topLeft(), across ? inside.bottomLeft() : inside.topRight());
    body.setColorAt(0, colour.lighter(118));
    body.setColorAt(0.45, colour);
    body.setColorAt(1, colour.darker(165));
    painter.setBrush(body);
    painter.drawRoundedRect(inside, radius, radius);
    painter.restore();
}

void paintKnob(QPainter& painter, const QPointF& centre, double radius, const ControlState& state) {
    const auto circle = [&](const QPointF& at, double r) { painter.drawEllipse(at, r, r); };
    painter.save();
    painter.setPen(Qt::NoPen);
    if (state.pressed || state.hovered) {
        painter.setBrush(faded(Theme::green, state.pressed ? 0.26 : 0.14));
        circle(centre, radius + 2.5);
    }
    painter.setBrush(faded(Qt::black, 0.28));
    circle(centre + QPointF(0, 1.4), radius + 0.9);
    circle(centre + QPointF(0, 0.9), radius + 0.3);
    QColor metal = Theme::text;
    if (!state.enabled)
        metal = Theme::textDim.darker(170);
    else if (state.hovered || state.pressed)
        metal = metal.lighter(114);
    QLinearGradient rim(centre.x(), centre.y() - radius, centre.x(), centre.y() + radius);
    rim.setColorAt(0, metal.lighter(112));
    rim.setColorAt(1, metal.darker(290));
    painter.setBrush(rim);
    circle(centre, radius);
    QLinearGradient cap(centre.x(), centre.y() - radius, centre.x(), centre.y() + radius);
    cap.setColorAt(0, metal.darker(150));
    cap.setColorAt(1, metal);
    painter.setBrush(cap);
    circle(centre, radius * 0.76);
    if (state.pressed) {
        painter.setBrush(Theme::green);
        circle(centre, radius * 0.25);
    }
    painter.restore();
    if (state.focused)
        paintFocusRing(painter,
                       QRectF(centre.x() - radius - 2, centre.y() - radius - 2, 2 * radius + 4,
                              2 * radius + 4),
                       radius + 2);
}

QColor inkOf(const ControlState& state) {
    if (!state.enabled)
        return faded(Theme::textDim, 0.55);
    if (state.lit)
        return state.hovered ? Theme::green.lighter(115) : Theme::green;
    return state.hovered ? Theme::text.lighter(120) : Theme::text;
}

} // namespace quorel
