#include "ui/theme/Glow.h"

#include <algorithm>
#include <vector>

namespace quorel {

namespace {

using Line = std::vector<int>;

/// Each value becomes the mean of its surroundings.
void boxBlur(Line& line, int reach) {
    const int size = static_cast<int>(line.size());
    const auto at = [&](int index) {
        return index >= 0 && index < size ? line[static_cast<size_t>(index)] : 0;
    };
    int sum = 0;
    for (int index = -reach; index < reach; ++index)
        sum += at(index);
    Line blurred(line.size());
    for (int index = 0; index < size; ++index) {
        sum += at(index + reach);
        blurred[static_cast<size_t>(index)] = sum / (2 * reach + 1);
        sum -= at(index - reach);
    }
    line.swap(blurred);
}

/// Three boxes in a row come close to a bell.
void blur(Line& line, int radius) {
    const int reach = std::max(1, radius / 2);
    for (int pass = 0; pass < 3; ++pass)
        boxBlur(line, reach);
}

} // namespace

QImage glowOf(const QImage& shape, const QColor& colour, int radius) {
    QImage alpha = shape.convertToFormat(QImage::Format_Alpha8);
    // Sixteen times finer than the bytes: three roundings would dim the edge of the light.
    for (int y = 0; y < alpha.height(); ++y) {
        uchar* row = alpha.scanLine(y);
        Line line(row, row + alpha.width());
        std::transform(line.begin(), line.end(), line.begin(), [](int a) { return a * 16; });
        blur(line, radius);
        std::transform(line.begin(), line.end(), row,
                       [](int a) { return static_cast<uchar>(a / 16); });
    }
    QImage glow(shape.size(), QImage::Format_ARGB32_Premultiplied);
    glow.setDevicePixelRatio(shape.devicePixelRatio());
    for (int x = 0; x < alpha.width(); ++x) {
        Line line(static_cast<size_t>(alpha.height()));
        for (int y = 0; y < alpha.height(); ++y)
            line[static_cast<size_t>(y)] = alpha.constScanLine(y)[x] * 16;
        blur(line, radius);
        for (int y = 0; y < alpha.height(); ++y) {
            const int opacity = line[static_cast<size_t>(y)] / 16;
            reinterpret_cast<QRgb*>(glow.scanLine(y))[x] =
                qPremultiply(qRgba(colour.red(), colour.green(), colour.blue(), opacity));
        }
    }
    return glow;
}

} // namespace quorel
