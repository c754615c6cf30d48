#include "ui/controls/Bubble.h"

#include "ui/theme/Surfaces.h"
#include "ui/theme/Theme.h"

#include <algorithm>

namespace quorel {

QPainterPath bubble(const QRectF& area, double radius, TipSide side, double x, double height) {
    const bool up = side == TipSide::Up;
    const QRectF body = area.adjusted(0, up ? height : 0, 0, up ? 0 : -height);
    QPainterPath path;
    path.addRoundedRect(body, radius, radius);
    const double middle =
        std::clamp(x, body.left() + radius + height, body.right() - radius - height);
    const double foot = up ? body.top() + 0.5 : body.bottom() - 0.5;
    QPainterPath tip;
    tip.addPolygon(
        QPolygonF({QPointF(middle - height, foot), QPointF(middle, up ? area.top() : area.bottom()),
                   QPointF(middle + height, foot), QPointF(middle - height, foot)}));
    return path.united(tip);
}

void paintBubble(QPainter& painter, const QPainterPath& shape) {
    painter.fillPath(shape, Theme::steel.darker(140));
    QLinearGradient light(shape.boundingRect().topLeft(), shape.boundingRect().bottomLeft());
    light.setColorAt(0, Theme::faded(Theme::steelLight, 0.55));
    light.setColorAt(std::min(1.0, 60 / shape.boundingRect().height()),
                     Theme::faded(Theme::steelLight, 0));
    painter.fillPath(shape, light);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(Theme::steelLight.lighter(120), hairline(painter)));
    painter.drawPath(shape);
}

} // namespace quorel
