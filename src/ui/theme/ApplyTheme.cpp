#include "ui/theme/ApplyTheme.h"

#include "ui/theme/FocusVisible.h"
#include "ui/theme/PanelStyle.h"
#include "ui/theme/Scale.h"
#include "ui/theme/Theme.h"

#include <QApplication>
#include <QEvent>
#include <QToolTip>
#include <QWidget>

namespace quorel {

namespace {

/// What standard controls write in: whole pixels, for they paint at the size they have.
void setScaledFont() {
    QFont font = Theme::font(Theme::TextRole::Body);
    font.setPixelSize(px(font.pixelSize()));
    QApplication::setFont(font);
    QToolTip::setFont(font);
}

} // namespace

void applyTheme(QApplication& application) {
    QApplication::setStyle(new PanelStyle);
    QApplication::setPalette(PanelStyle::panelPalette());
    QPalette menu = PanelStyle::panelPalette();
    menu.setColor(QPalette::Window, Theme::steel.darker(150));
    QApplication::setPalette(menu, "QMenu"); // those that combo boxes open, too
    QToolTip::setPalette(PanelStyle::panelPalette());
    setScaledFont();
    watchKeyboardFocus(application);
}

void setInterfaceScale(double scale) {
    if (qFuzzyCompare(scale, uiScale()))
        return;
    QWidgetList frozen;
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->updatesEnabled()) {
            window->setUpdatesEnabled(false);
            frozen.append(window);
        }
    }
    setUiScaleFactor(scale);
    setScaledFont();
    const QWidgetList widgets = QApplication::allWidgets();
    // Qt would tell them of the font in the next turn of the loop; the layouts need it now. First
    // all of the font: with a new style some have their window laid out at once.
    for (const QEvent::Type type : {QEvent::ApplicationFontChange, QEvent::StyleChange}) {
        for (QWidget* widget : widgets) {
            QEvent change(type);
            QApplication::sendEvent(widget, &change);
        }
    }
    // Layouts keep what they asked; some did so while only a part of the widgets had changed.
    for (QWidget* widget : widgets)
        widget->updateGeometry();
    for (QWidget* window : frozen)
        window->setUpdatesEnabled(true);
}

} // namespace quorel
