#include "ui/theme/Icons.h"

#include "ui/theme/Glow.h"
#include "ui/theme/Theme.h"

#include <QFile>
#include <QPixmapCache>
#include <QSvgRenderer>
#include <array>
#include <cmath>

// Q_INIT_RESOURCE may not stand in a namespace. Without it a program that links this library
// leaves the symbols behind.
static void provideIconFiles() {
    Q_INIT_RESOURCE(icons);
}

namespace quorel {

namespace {

struct Named {
    Icon icon;
    const char* name;
};

constexpr Named kNames[] = {
    {Icon::Previous, "previous"},
    {Icon::Play, "play"},
    {Icon::Pause, "pause"},
    {Icon::Stop, "stop"},
    {Icon::Next, "next"},
    {Icon::Speaker, "speaker"},
    {Icon::SpeakerMuted, "speaker-muted"},
    {Icon::ModeNormal, "mode-normal"},
    {Icon::ModeStopAfter, "mode-stop-after"},
    {Icon::RepeatOne, "repeat-one"},
    {Icon::RepeatAll, "repeat-all"},
    {Icon::Shuffle, "shuffle"},
    {Icon::Equalizer, "equalizer"},
    {Icon::Gear, "gear"},
    {Icon::Playlist, "playlist"},
    {Icon::Plus, "plus"},
    {Icon::Load, "load"},
    {Icon::Save, "save"},
    {Icon::Remove, "remove"},
    {Icon::Undo, "undo"},
    {Icon::Search, "search"},
    {Icon::Clear, "clear"},
    {Icon::Checkmark, "checkmark"},
    {Icon::PlusCircle, "plus-circle"},
    {Icon::Trash, "trash"},
    {Icon::Pencil, "pencil"},
    {Icon::ArrowLeft, "arrow-left"},
    {Icon::ArrowRight, "arrow-right"},
    {Icon::Handle, "handle"},
    {Icon::Update, "update"},
    {Icon::Ok, "ok"},
    {Icon::Close, "close"},
    {Icon::Warning, "warning"},
    {Icon::Pin, "pin"},
    {Icon::ChevronDown, "chevron-down"},
    {Icon::PlayCircle, "play-circle"},
    {Icon::Waveform, "waveform"},
    {Icon::Dial, "dial"},
    {Icon::Loudspeaker, "loudspeaker"},
    {Icon::WindowFrame, "window-frame"},
};

constexpr auto kAll = [] {
    std::array<Icon, std::size(kNames)> icons{};
    for (size_t index = 0; index < icons.size(); ++index)
        icons[index] = kNames[index].icon;
    return icons;
}();

static_assert(
    [] {
        for (size_t index = 0; index < kAll.size(); ++index) {
            if (kAll[index] != static_cast<Icon>(index))
                return false;
        }
        return true;
    }(),
    "the table follows the order of the enumeration");

QByteArray drawingOf(Icon icon) {
    static const bool provided = [] {
        provideIconFiles();
        return true;
    }();
    Q_UNUSED(provided);
    QFile file(QStringLiteral(":/icons/%1.svg").arg(iconName(icon)));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("the symbol %s is missing", qPrintable(iconName(icon)));
    return file.readAll();
}

QImage paintDrawing(Icon icon, int pixels, const QColor& colour, int margin) {
    QByteArray drawing = drawingOf(icon);
    drawing.replace("currentColor", colour.name().toLatin1());
    QImage image(pixels + 2 * margin, pixels + 2 * margin, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setOpacity(colour.alphaF());
    QSvgRenderer(drawing).render(&painter, QRectF(margin, margin, pixels, pixels));
    return image;
}

QString keyOf(const char* kind, Icon icon, int pixels, const QColor& colour, double ratio) {
    return QStringLiteral("quorel-%1-%2-%3-%4-%5")
        .arg(QLatin1String(kind), iconName(icon))
        .arg(pixels)
        .arg(colour.rgba(), 0, 16)
        .arg(ratio);
}

/// The pixmap of that key, made by `make` (a QImage) when it is not at hand.
template <typename Make>
QPixmap cached(const QString& key, Make make) {
    QPixmap pixmap;
    if (!QPixmapCache::find(key, &pixmap)) {
        pixmap = QPixmap::fromImage(make());
        QPixmapCache::insert(key, pixmap);
    }
    return pixmap;
}

int glowRadius(int pixels) {
    return std::max(2, pixels / 6);
}

/// Where `square` lies on the device, as whole pixels.
QRect onDevice(const QPainter& painter, const QRectF& square) {
    const QRectF device = painter.deviceTransform().mapRect(square);
    const int side = std::max(1, qRound(device.width()));
    return {qRound(device.center().x() - side / 2.0), qRound(device.center().y() - side / 2.0),
            side, side};
}

/// Pixel for pixel, whatever the painter's scale is.
void putOnDevice(QPainter& painter, const QRect& device, const QPixmap& pixmap) {
    painter.save();
    const QTransform fromDevice = painter.deviceTransform().inverted();
    painter.drawPixmap(fromDevice.mapRect(QRectF(device)), pixmap, QRectF(pixmap.rect()));
    painter.restore();
}

} // namespace

std::span<const Icon> allIcons() {
    return kAll;
}

QString iconName(Icon icon) {
    return QString::fromLatin1(kNames[static_cast<size_t>(icon)].name);
}

QPixmap iconPixmap(Icon icon, double size, const QColor& colour, double devicePixelRatio) {
    const int pixels = std::max(1, qRound(size * devicePixelRatio));
    return cached(keyOf("icon", icon, pixels, colour, devicePixelRatio), [&] {
        QImage image = paintDrawing(icon, pixels, colour, 0);
        image.setDevicePixelRatio(devicePixelRatio);
        return image;
    });
}

void drawIcon(QPainter& painter, Icon icon, const QRectF& square, const QColor& colour) {
    const QRect device = onDevice(painter, square);
    putOnDevice(painter, device, iconPixmap(icon, device.width(), colour, 1));
}

void drawRaisedIcon(QPainter& painter, Icon icon, const QRectF& square, const QColor& colour,
                    bool lit) {
    if (lit) {
        const QRect device = onDevice(painter, square);
        const int radius = glowRadius(device.width());
        const int margin = 2 * radius;
        const QPixmap glow = cached(keyOf("glow", icon, device.width(), colour, 1), [&] {
            return glowOf(paintDrawing(icon, device.width(), colour, margin), colour, radius);
        });
        putOnDevice(painter, device.adjusted(-margin, -margin, margin, margin), glow);
    } else {
        drawIcon(painter, icon, square.translated(0, 1), Theme::faded(Qt::black, 0.55));
    }
    drawIcon(painter, icon, square, colour);
}

} // namespace quorel
