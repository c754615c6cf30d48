#pragma once

#include <QColor>
#include <QPainter>
#include <QRectF>

class QStyleOption;
class QWidget;

namespace quorel {

// What every view of the front panel is made of. Rectangles and radii are in the painter's units,
// which are base units; edges fall on whole pixels of the device at every scale.

/// How a control looks just now.
struct ControlState {
    bool enabled = true;
    bool hovered = false;
    bool pressed = false;
    bool lit = false;
    bool focused = false; ///< shows its focus ring
};

/// Enabled, hovered and focused as the widget is.
ControlState stateOf(const QWidget& widget);
/// The same of a control that a style paints.
ControlState stateOf(const QStyleOption& option, const QWidget* widget);

/// The rectangle with its edges moved to the nearest pixels of the device.
QRectF crisp(const QPainter& painter, const QRectF& rect);
/// The width of the finest line of full strength: one pixel, more on finer devices.
double hairline(const QPainter& painter);

/// A hairline border just inside the rectangle.
void strokeInside(QPainter& painter, const QRectF& rect, double radius, const QColor& colour);
/// Sunk into the panel, with a shadow from its upper edge and a lip of light below.
void paintWell(QPainter& painter, const QRectF& rect, double radius, const QColor& floor);
/// Stands out of the panel: sinks when pressed, glows from within when lit.
void paintFace(QPainter& painter, const QRectF& rect, double radius, const ControlState& state);
/// A soft shadow below what is painted next in the same place.
void paintDropShadow(QPainter& painter, const QRectF& rect, double radius);
void paintFocusRing(QPainter& painter, const QRectF& rect, double radius);
/// Engraved lines.
void paintSeparator(QPainter& painter, const QPointF& from, const QPointF& to);

/// A slider's slot and the part of it that is filled with light.
void paintGroove(QPainter& painter, const QRectF& rect);
void paintGrooveFill(QPainter& painter, const QRectF& rect, bool enabled);
/// A slider's metal knob; a pressed one glows.
void paintKnob(QPainter& painter, const QPointF& centre, double radius, const ControlState& state);

/// The colour of text and symbols on a control.
QColor inkOf(const ControlState& state);

} // namespace quorel
