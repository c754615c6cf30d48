#include "ui/theme/FocusVisible.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>

namespace quorel {

namespace {

bool walking = false;

class Watch final : public QObject {
  public:
    using QObject::QObject;

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (!watched->isWidgetType())
            return false;
        if (event->type() == QEvent::MouseButtonPress) {
            set(false);
        } else if (event->type() == QEvent::KeyPress) {
            const int key = static_cast<const QKeyEvent*>(event)->key();
            if (key == Qt::Key_Tab || key == Qt::Key_Backtab)
                set(true);
        }
        return false;
    }

  private:
    static void set(bool now) {
        if (walking == now)
            return;
        walking = now;
        if (QWidget* widget = QApplication::focusWidget())
            widget->update();
    }
};

} // namespace

void watchKeyboardFocus(QApplication& application) {
    static Watch* watch = nullptr;
    if (watch)
        return;
    watch = new Watch(&application);
    application.installEventFilter(watch);
    QObject::connect(watch, &QObject::destroyed, [] { watch = nullptr; });
}

bool showsFocusRing(const QWidget* widget) {
    return walking && widget && widget->hasFocus();
}

} // namespace quorel
