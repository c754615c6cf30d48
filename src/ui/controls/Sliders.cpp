#include "ui/controls/Sliders.h"

#include "ui/theme/BasePainter.h"
#include "ui/theme/Surfaces.h"
#include "ui/theme/Theme.h"

#include <QPaintEvent>

namespace quorel {

namespace {

constexpr double kTrack = 6;
constexpr double kInset = 8; // from a track's end to the middle of a handle that stands there
constexpr double kDetent = 0.06;

/// Where handles go along a track: a straight line from the lowest value to the highest.
struct Travel {
    double from;
    double to;

    double positionOf(double share) const { return from + share * (to - from); }
    double shareAt(double position) const {
        return std::abs(to - from) < 1e-6 ? 0 : (position - from) / (to - from);
    }
};

Travel across(const QWidget& slider) {
    return {kInset, baseRect(slider).width() - kInset};
}

Travel upwards(const QWidget& slider) {
    return {baseRect(slider).height() - kInset, kInset};
}

QRectF flatTrack(const QWidget& slider) {
    const QRectF area = baseRect(slider);
    return {area.left() + 2, area.center().y() - kTrack / 2, area.width() - 4, kTrack};
}

ControlState knobState(const ValueSlider& slider) {
    ControlState state = stateOf(slider);
    state.pressed = slider.isEditing();
    return state;
}

/// Small at rest, large when it matters.
double knobRadius(const ControlState& state) {
    return state.hovered || state.pressed || state.focused ? 7 : 6;
}

QRectF between(double from, double to, double across, bool flat) {
    const QRectF rect =
        flat ? QRectF(QPointF(from, across - kTrack / 2), QPointF(to, across + kTrack / 2))
             : QRectF(QPointF(across - kTrack / 2, from), QPointF(across + kTrack / 2, to));
    return rect.normalized();
}

} // namespace

FillSlider::FillSlider(QWidget* parent)
    : FillSlider({.lowest = 0, .highest = 1, .step = 0.05, .page = 0.2, .rest = std::nullopt},
                 Snap::None, parent) {}

FillSlider::FillSlider(const Range& range, Snap snap, QWidget* parent)
    : ValueSlider(range, parent)
    , snap_(snap) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize FillSlider::sizeHint() const {
    return px(QSizeF(120, 20));
}

QSize FillSlider::minimumSizeHint() const {
    return px(QSizeF(48, 20));
}

QPointF FillSlider::handleAt(double value) const {
    const double share = (value - range().lowest) / (range().highest - range().lowest);
    return {across(*this).positionOf(share), baseRect(*this).center().y()};
}

double FillSlider::valueAt(QPointF position) const {
    const double share = across(*this).shareAt(position.x());
    return range().lowest + share * (range().highest - range().lowest);
}

double FillSlider::snapped(double value) const {
    const double step = range().step;
    if (snap_ == Snap::None)
        return value;
    // By division where it can be: 7 x 0.1 is not the number that is written 0.7, 7 / 10 is.
    const double steps = std::round(value / step);
    return step < 1 ? steps / std::round(1 / step) : steps * step;
}

void FillSlider::paintEvent(QPaintEvent* event) {
    const ControlState state = knobState(*this);
    const QRectF track = flatTrack(*this);
    const QPointF knob = handleAt(value());
    groove_.show(*this, event->rect(), [&](QPainter& painter) { paintGroove(painter, track); });
    BasePainter painter(this);
    paintGrooveFill(painter, QRectF(track.topLeft(), QPointF(knob.x(), track.bottom())),
                    state.enabled);
    paintKnob(painter, knob, knobRadius(state), state);
}

PanSlider::PanSlider(QWidget* parent)
    : ValueSlider({.lowest = -1, .highest = 1, .step = 0.05, .page = 0.25, .rest = 0}, parent) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize PanSlider::sizeHint() const {
    return px(QSizeF(100, 20));
}

QPointF PanSlider::handleAt(double value) const {
    return {across(*this).positionOf((value + 1) / 2), baseRect(*this).center().y()};
}

double PanSlider::valueAt(QPointF position) const {
    return across(*this).shareAt(position.x()) * 2 - 1;
}

double PanSlider::detent(double value) const {
    return std::abs(value) < kDetent ? 0 : value;
}

void PanSlider::paintEvent(QPaintEvent*) {
    BasePainter painter(this);
    const ControlState state = knobState(*this);
    const QRectF track = flatTrack(*this);
    const QPointF knob = handleAt(value());
    const QPointF centre = handleAt(0);
    const QColor mark = Theme::faded(Theme::textDim, state.enabled ? 0.9 : 0.4);
    for (const double y : {track.top() - 4, track.bottom() + 1})
        painter.fillRect(crisp(painter, QRectF(centre.x() - 0.5, y, 1, 3)), mark);
    paintGroove(painter, track);
    if (value() != 0)
        paintGrooveFill(painter, between(centre.x(), knob.x(), centre.y(), true), state.enabled);
    paintKnob(painter, knob, knobRadius(state), state);
}

EQBandSlider::EQBandSlider(QWidget* parent)
    : ValueSlider({.lowest = -12, .highest = 12, .step = 1, .page = 3, .rest = 0}, parent) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
}

QSize EQBandSlider::sizeHint() const {
    return px(QSizeF(24, 128));
}

QSize EQBandSlider::minimumSizeHint() const {
    return px(QSizeF(20, 64));
}

QPointF EQBandSlider::handleAt(double value) const {
    return {baseRect(*this).center().x(), upwards(*this).positionOf((value + 12) / 24)};
}

double EQBandSlider::valueAt(QPointF position) const {
    return upwards(*this).shareAt(position.y()) * 24 - 12;
}

void EQBandSlider::paintEvent(QPaintEvent*) {
    BasePainter painter(this);
    const ControlState state = knobState(*this);
    const QRectF area = baseRect(*this);
    const QPointF knob = handleAt(value());
    const QPointF centre = handleAt(0);
    for (const double gain : {-12, -6, 0, 6, 12}) {
        const double y = handleAt(gain).y();
        const double reach = gain == 0 ? area.width() / 2 - 1 : 7;
        painter.fillRect(crisp(painter, QRectF(centre.x() - reach, y - 0.5, 2 * reach, 1)),
                         Theme::faded(Theme::textDim, gain == 0 && state.enabled ? 0.8 : 0.35));
    }
    paintGroove(painter,
                QRectF(centre.x() - kTrack / 2, area.top() + 2, kTrack, area.height() - 4));
    if (value() != 0)
        paintGrooveFill(painter, between(centre.y(), knob.y(), centre.x(), false), state.enabled);
    paintKnob(painter, knob, knobRadius(state), state);
}

} // namespace quorel
