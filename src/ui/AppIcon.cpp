#include "ui/AppIcon.h"

#include <QPainter>
#include <QSvgRenderer>

// May not stand in a namespace; without it the linker leaves the pictures out.
static void loadAppPictures() {
    Q_INIT_RESOURCE(app);
}

namespace quorel {

QIcon appIcon(bool withWordmark) {
    loadAppPictures();
    QSvgRenderer renderer(withWordmark ? QStringLiteral(":/app/quorel-wordmark.svg")
                                       : QStringLiteral(":/app/quorel.svg"));
    QIcon icon;
    for (const int size : {32, 64, 128, 256}) {
        QPixmap picture(size, size);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        renderer.render(&painter);
        icon.addPixmap(picture);
    }
    return icon;
}

} // namespace quorel
