#pragma once

#include <QCoreApplication>
#include <QPaintEvent>
#include <QWidget>
#include <utility>

namespace quorel::test {

/// What of a widget is painted from now on.
class Painted : public QObject {
  public:
    explicit Painted(QWidget& widget) {
        QCoreApplication::processEvents();
        widget.installEventFilter(this);
    }
    QRect takeArea() {
        QCoreApplication::processEvents();
        times_ = 0;
        return std::exchange(area_, QRect());
    }
    int takeTimes() {
        QCoreApplication::processEvents();
        return std::exchange(times_, 0);
    }

  protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint) {
            area_ |= static_cast<QPaintEvent*>(event)->rect();
            ++times_;
        }
        return false;
    }

  private:
    QRect area_;
    int times_ = 0;
};

} // namespace quorel::test
