#include "ui/KeyFilter.h"

#include "player/PlayerController.h"
#include "ui/controls/ValueSlider.h"
#include "ui/theme/FocusVisible.h"

#include <QAbstractItemView>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QTabBar>
#include <QTextEdit>

namespace quorel {

namespace {

template <class... Kinds>
bool isOneOf(QWidget* widget) {
    return (... || (qobject_cast<Kinds*>(widget) != nullptr));
}

/// In a dialog a control that was clicked has the arrows, too: it is what one came to set.
bool hasArrows(QWidget* focus) {
    return showsFocusRing(focus) || focus->window()->windowType() == Qt::Dialog;
}

} // namespace

bool isEditingText() {
    QWidget* const focus = QApplication::focusWidget();
    return focus && (isOneOf<QLineEdit, QTextEdit, QPlainTextEdit, QAbstractSpinBox>(focus));
}

KeyFilter::KeyFilter(PlayerController& player, QObject* parent)
    : QObject(parent)
    , player_(player) {
    QCoreApplication::instance()->installEventFilter(this);
}

FocusContext KeyFilter::contextOf(Qt::Key key) const {
    QWidget* const focus = QApplication::focusWidget();
    if (isEditingText())
        return {FocusKind::TextField, false};
    // It has the focus while it is walked through with the Alt key.
    if (focus && isOneOf<QMenuBar>(focus))
        return {FocusKind::ArrowControl, true};
    if (focus && isOneOf<ValueSlider, QAbstractSlider, QComboBox, QTabBar>(focus))
        return {FocusKind::ArrowControl, hasArrows(focus)};
    if (focus && focus == enteredList_ && (key == Qt::Key_Up || key == Qt::Key_Down))
        return {FocusKind::ArrowControl, showsFocusRing(focus)};
    return {};
}

/// The focus that comes back with its window, or from a menu, is as it was.
void KeyFilter::followFocus(QWidget* widget, Qt::FocusReason reason) {
    if (reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason)
        enteredList_ = qobject_cast<QAbstractItemView*>(widget);
    else if (reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason)
        enteredList_.clear();
}

bool KeyFilter::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn && watched->isWidgetType())
        followFocus(static_cast<QWidget*>(watched), static_cast<QFocusEvent*>(event)->reason());
    const bool isOverride = event->type() == QEvent::ShortcutOverride;
    if ((!isOverride && event->type() != QEvent::KeyPress) || !watched->isWidgetType())
        return false;
    if (QApplication::activePopupWidget() || QApplication::activeModalWidget())
        return false;
    const auto* const key = static_cast<QKeyEvent*>(event);
    const auto modifiers = key->modifiers() & ~Qt::KeypadModifier; // arrows of some layouts have it
    const auto pressed = static_cast<Qt::Key>(key->key());
    const FocusContext focus = contextOf(pressed);
    if (isOverride) {
        // Says beforehand that no menu shall have the key.
        const KeyAction action =
            actionOfKey(pressed, modifiers, focus, player_.playback().isLoaded());
        if (action.kind == KeyAction::Kind::PassOn)
            return false;
        event->accept();
        return true;
    }
    return player_.handleKey(pressed, modifiers, focus);
}

} // namespace quorel
