#include "ui/visualisers/PixelFrame.h"

#include <algorithm>

namespace quorel {

PixelFrame::PixelFrame(QPainter& painter, QSizeF size)
    : painter_(painter)
    , unit_(painter.deviceTransform().m11())
    , size_(pixels(size.width()), pixels(size.height())) {
    const QTransform canvas = painter.deviceTransform();
    painter.save();
    painter.resetTransform();
    const QTransform device = painter.deviceTransform();
    painter.setTransform(QTransform::fromScale(1 / device.m11(), 1 / device.m22()));
    // A widget may begin between two pixels; the canvas begins at the nearer one.
    painter.translate(qRound(canvas.dx()) - device.dx(), qRound(canvas.dy()) - device.dy());
    painter.setClipRect(QRect(QPoint(), size_), Qt::IntersectClip);
}

std::pair<int, int> PixelFrame::pixelSlot(double begin, double step, double gap) const {
    const int left = pixels(begin);
    return {left, std::max(left + 1, pixels(begin + step) - std::max(1, pixels(gap)))};
}

} // namespace quorel
