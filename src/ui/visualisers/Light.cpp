#include "ui/visualisers/Light.h"

#include <algorithm>
#include <array>

namespace quorel {

QColor dimmed(QColor colour, double amount) {
    const auto less = [amount](double channel) { return std::max(0.0, channel - amount); };
    return QColor::fromRgbF(static_cast<float>(less(colour.redF())),
                            static_cast<float>(less(colour.greenF())),
                            static_cast<float>(less(colour.blueF())), colour.alphaF());
}

void dim(QImage& image, double amount) {
    std::array<int, 256> loss{}; // by coverage
    for (int alpha = 0; alpha < 256; ++alpha) {
        loss[static_cast<std::size_t>(alpha)] = qRound(amount * alpha);
    }
    for (int y = 0; y < image.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        std::for_each(line, line + image.width(), [&loss](QRgb& pixel) {
            const int less = loss[static_cast<std::size_t>(qAlpha(pixel))];
            pixel = qRgba(std::max(0, qRed(pixel) - less), std::max(0, qGreen(pixel) - less),
                          std::max(0, qBlue(pixel) - less), qAlpha(pixel));
        });
    }
}

} // namespace quorel
