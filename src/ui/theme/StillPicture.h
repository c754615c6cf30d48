#pragma once

#include <QPixmap>
#include <functional>

class QPainter;
class QWidget;

namespace quorel {

/// What a widget shows behind all that moves in it, painted once. Gradients, shadows and clips cost
/// a hundred times what copying their pixels does.
class StillPicture {
  public:
    /// In base units, from the widget's upper left corner.
    using Paint = std::function<void(QPainter&)>;

    /// Copies the part of the widget's picture into the widget. `paint` makes the picture anew when
    /// size, scale or resolution have changed.
    void show(QWidget& widget, const QRect& part, const Paint& paint);

  private:
    QPixmap picture_;
    double scale_ = 0;
};

} // namespace quorel
