#include "ui/visualisers/Sprite.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace quorel {

namespace {

constexpr int kPasses = 3;

QRgb* pixels(QImage& image) {
    return reinterpret_cast<QRgb*>(image.bits());
}

/// Replaces each of `count` pixels, `step` apart, by the mean over `radius` pixels on both sides.
void boxBlur(QRgb* line, int count, qsizetype step, int radius, std::vector<QRgb>& copy) {
    for (int i = 0; i < count; ++i) {
        copy[static_cast<std::size_t>(i)] = line[i * step];
    }
    std::array<int, 4> sums{};
    const auto add = [&](int i, int sign) {
        if (i < 0 || i >= count) {
            return;
        }
        const QRgb pixel = copy[static_cast<std::size_t>(i)];
        sums[0] += sign * qRed(pixel);
        sums[1] += sign * qGreen(pixel);
        sums[2] += sign * qBlue(pixel);
        sums[3] += sign * qAlpha(pixel);
    };
    for (int i = -radius; i < radius; ++i) {
        add(i, 1);
    }
    const int width = 2 * radius + 1;
    for (int i = 0; i < count; ++i) {
        add(i + radius, 1);
        const auto mean = [width](int sum) { return (sum + width / 2) / width; };
        line[i * step] = qRgba(mean(sums[0]), mean(sums[1]), mean(sums[2]), mean(sums[3]));
        add(i - radius, -1);
    }
}

/// Three boxes come close to a Gaussian; their radius follows from the variance, which adds up.
int boxRadius(double sigma) {
    return std::max(1, qRound((std::sqrt(12 * sigma * sigma / kPasses + 1) - 1) / 2));
}

void blur(QImage& image, double sigma) {
    const int radius = boxRadius(sigma);
    std::vector<QRgb> copy(static_cast<std::size_t>(std::max(image.width(), image.height())));
    const qsizetype rowStep = image.bytesPerLine() / qsizetype{sizeof(QRgb)};
    for (int pass = 0; pass < kPasses; ++pass) {
        for (int y = 0; y < image.height(); ++y) {
            boxBlur(pixels(image) + y * rowStep, image.width(), 1, radius, copy);
        }
        for (int x = 0; x < image.width(); ++x) {
            boxBlur(pixels(image) + x, image.height(), rowStep, radius, copy);
        }
    }
}

void drawAt(QImage& image, int margin, const std::function<void(QPainter&)>& draw) {
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.translate(margin, margin);
    draw(painter);
}

} // namespace

void Sprite::draw(QPainter& painter, QPoint at) const {
    painter.drawImage(at - QPoint(margin, margin), image);
}

Sprite glowing(QSize shape, double sigma, const std::function<void(QPainter&)>& glow,
               const std::function<void(QPainter&)>& body) {
    const int margin = kPasses * boxRadius(sigma) + 1;
    QImage image(shape.grownBy(QMargins(margin, margin, margin, margin)),
                 QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    drawAt(image, margin, glow);
    blur(image, sigma);
    drawAt(image, margin, body);
    return {std::move(image), margin};
}

void SpriteCache::use(const SpriteKey& key) {
    if (!(key == key_)) {
        key_ = key;
        sprites_.clear();
    }
}

const Sprite& SpriteCache::get(QColor colour, QSize shape, bool lit,
                               const std::function<Sprite()>& make) {
    const auto [found, isNew] =
        sprites_.try_emplace({colour.rgba(), shape.width(), shape.height(), lit});
    if (isNew) {
        found->second = make();
    }
    return found->second;
}

} // namespace quorel
