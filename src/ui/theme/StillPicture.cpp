#include "ui/theme/StillPicture.h"

#include "ui/theme/Scale.h"

#include <QPainter>
#include <QWidget>

namespace quorel {

void StillPicture::show(QWidget& widget, const QRect& part, const Paint& paint) {
    const double ratio = widget.devicePixelRatioF();
    const QSize pixels = (QSizeF(widget.size()) * ratio).toSize();
    if (picture_.size() != pixels || picture_.devicePixelRatio() != ratio || scale_ != uiScale()) {
        picture_ = QPixmap(pixels);
        picture_.setDevicePixelRatio(ratio);
        picture_.fill(Qt::transparent);
        scale_ = uiScale();
        QPainter painter(&picture_);
        painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
        painter.scale(scale_, scale_);
        paint(painter);
    }
    QPainter painter(&widget);
    painter.drawPixmap(QRectF(part), picture_,
                       QRectF(QPointF(part.topLeft()) * ratio, QSizeF(part.size()) * ratio));
}

} // namespace quorel
