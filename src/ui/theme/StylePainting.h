#pragma once

#include "ui/theme/Scale.h"
#include "ui/theme/Surfaces.h"

#include <QPainter>
#include <QStyleOption>

namespace quorel {

/// For as long as it lives a style's painter paints in base units.
class InBaseUnits {
  public:
    explicit InBaseUnits(QPainter& painter)
        : painter_(painter) {
        painter_.save();
        painter_.setRenderHint(QPainter::Antialiasing);
        painter_.scale(uiScale(), uiScale());
    }
    ~InBaseUnits() { painter_.restore(); }
    InBaseUnits(const InBaseUnits&) = delete;
    InBaseUnits& operator=(const InBaseUnits&) = delete;

    static QRectF area(const QRect& pixels) {
        return {pixels.x() / uiScale(), pixels.y() / uiScale(), pixels.width() / uiScale(),
                pixels.height() / uiScale()};
    }

  private:
    QPainter& painter_;
};

// Qt's own controls, in base units.
namespace stylepainting {

void button(QPainter& painter, const QRectF& area, const ControlState& state);
void field(QPainter& painter, const QRectF& area, const ControlState& state);
void checkBox(QPainter& painter, const QRectF& area, const ControlState& state);
void radioButton(QPainter& painter, const QRectF& area, const ControlState& state);
void group(QPainter& painter, const QRectF& area);
void menuPanel(QPainter& painter, const QRectF& area);
void menuItem(QPainter& painter, const QStyleOptionMenuItem& option);
void menuBarItem(QPainter& painter, const QStyleOptionMenuItem& option);
void tab(QPainter& painter, const QStyleOptionTab& option);
void scrollBarSlider(QPainter& painter, const QRectF& area, const ControlState& state);
void chevron(QPainter& painter, const QRectF& area, bool upwards, const ControlState& state);

} // namespace stylepainting

} // namespace quorel
