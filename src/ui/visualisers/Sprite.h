#pragma once

#include "ui/visualisers/PixelFrame.h"

#include <QColor>
#include <QImage>
#include <functional>
#include <map>
#include <tuple>

namespace quorel {

/// A premultiplied picture that reaches `margin` pixels beyond the shape on every side.
struct Sprite {
    QImage image;
    int margin = 0;

    /// With the shape's upper left corner at that pixel.
    void draw(QPainter& painter, QPoint at) const;
};

/// A shape with light around it: `glow` is blurred by a Gaussian of `sigma` pixels and `body` drawn
/// sharp upon it, both in pixels from the shape's corner.
Sprite glowing(QSize shape, double sigma, const std::function<void(QPainter&)>& glow,
               const std::function<void(QPainter&)>& body);

/// The sprites of one canvas, made when first needed. Whoever paints a view keeps one for it.
class SpriteCache {
  public:
    /// Forgets what was made for anything else.
    void use(const SpriteKey& key);
    const SpriteKey& key() const { return key_; }
    /// The sprite of a shape of that colour and size, lit or not, from `make` where it is new.
    const Sprite& get(QColor colour, QSize shape, bool lit, const std::function<Sprite()>& make);

  private:
    SpriteKey key_;
    std::map<std::tuple<QRgb, int, int, bool>, Sprite> sprites_;
};

} // namespace quorel
