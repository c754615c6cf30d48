#pragma once

#include "ui/theme/Scale.h"

#include <QPainter>
#include <QWidget>

namespace quorel {

/// The widget's area in base units.
inline QRectF baseRect(const QWidget& widget) {
    return {0, 0, widget.width() / uiScale(), widget.height() / uiScale()};
}

/// A position in the widget in base units, as from a mouse event.
inline QPointF toBase(QPointF pixels) {
    return pixels / uiScale();
}

/// That many base units in whole pixels.
inline QSize px(QSizeF units) {
    return {px(units.width()), px(units.height())};
}

/// Paints a widget in base units.
class BasePainter : public QPainter {
  public:
    explicit BasePainter(QWidget* widget)
        : QPainter(widget) {
        setRenderHint(Antialiasing);
        setRenderHint(SmoothPixmapTransform);
        scale(uiScale(), uiScale());
    }
};

} // namespace quorel
