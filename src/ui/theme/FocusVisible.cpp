#include "ui/theme/FocusVisible.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>

namespace quorel {

namespace {

bool walking = false;

void set(bool now) {
    if (walking == now)
        return;
    walking = now;
    if (QWidget* widget = QApplication::focusWidget())
        widget->update();
}

class Watch final : public QObject {
  public:
    using QObject::QObject;

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (!watched->isWidgetType())
            return false;
        if (event->type() == QEvent::MouseButtonPress) {
            set(false);
        } else if (event->type() == QEvent::KeyPress) {
            const auto& pressed = *static_cast<const QKeyEvent*>(event);
            const bool isTab = pressed.key() == Qt::Key_Tab || pressed.key() == Qt::Key_Backtab;
            if (isTab && !pressed.modifiers().testFlag(Qt::ControlModifier))
                set(true);
        }
        return false;
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

void beginFocusWalk() {
    set(true);
}

bool showsFocusRing(const QWidget* widget) {
    return walking && widget && widget->hasFocus();
}

} // namespace quorel
