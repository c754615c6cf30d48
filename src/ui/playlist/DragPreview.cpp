#include "ui/playlist/DragPreview.h"

#include "ui/theme/Scale.h"
#include "ui/theme/Surfaces.h"
#include "ui/theme/Theme.h"

#include <QFontMetricsF>
#include <QPainter>
#include <cmath>

namespace quorel {

QPixmap dragPreview(const QString& label, double devicePixelRatio) {
    constexpr double kSides = 12;
    constexpr double kWidest = 240;
    const QFont font = Theme::font(Theme::TextRole::Strong);
    const QFontMetricsF metrics(font);
    const QString text = metrics.elidedText(label, Qt::ElideRight, kWidest);
    const QRectF chip(1, 1, std::ceil(metrics.horizontalAdvance(text)) + 2 * kSides, 26);
    const QSizeF whole = chip.size() + QSizeF(2, 2);
    QPixmap pixmap((whole * uiScale() * devicePixelRatio).toSize());
    pixmap.setDevicePixelRatio(devicePixelRatio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(uiScale(), uiScale());
    painter.setOpacity(0.92);
    paintFace(painter, chip, 6, {.lit = true});
    painter.setFont(font);
    painter.setPen(Theme::text);
    painter.drawText(chip, Qt::AlignCenter, text);
    return pixmap;
}

} // namespace quorel
