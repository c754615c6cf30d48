#pragma once

#include <QColor>
#include <QImage>

namespace quorel {

/// What a brightness setting of 0..1 takes from each of red, green and blue (0..1).
constexpr double dimming(double brightness) {
    return (1 - brightness) * 0.35;
}

QColor dimmed(QColor colour, double amount);
/// Dims a whole premultiplied picture. Pictures dimmed one by one and laid upon each other give
/// what dimming the finished composition would: for a channel of value p and coverage a both yield
/// p - amount x a, as long as nothing falls below black.
void dim(QImage& image, double amount);

} // namespace quorel
