#pragma once

#include "player/ControllerFixture.h"
#include "ui/MainWindow.h"
#include "ui/theme/ApplyTheme.h"
#include "ui/theme/Scale.h"
#include "update/UpdateChecker.h"

#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <QTest>
#include <QWindow>

namespace quorel::test {

/// The main window over the real controller, used by mouse and keyboard. Events go through the
/// platform's window, as a person's do.
class WindowTest : public ControllerTest {
  protected:
    void TearDown() override { closeWindow(); }

    MainWindow& open() {
        closeWindow();
        launch();
        updates = std::make_unique<UpdateChecker>(clock, updateSource);
        window = std::make_unique<MainWindow>(*controller, *updates, clock);
        window->show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
        rest();
        return *window;
    }
    void closeWindow() {
        window.reset();
        updates.reset();
        setInterfaceScale(1);
    }

    /// Lets events and the background come to rest.
    void rest() {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
        settle();
        QCoreApplication::processEvents();
    }

    /// A pop-over that is open, else the dialog in front, else the window.
    QWidget& front() const {
        if (QWidget* const popup = QApplication::activePopupWidget())
            return *popup;
        if (QWidget* const dialog = QApplication::activeModalWidget())
            return *dialog;
        if (QWidget* const active = QApplication::activeWindow())
            return *active;
        return *window;
    }
    /// The control in front that an assistive technology would know by that name.
    template <class Control = QWidget>
    Control* find(const char* name) const {
        for (Control* const control : front().findChildren<Control*>()) {
            if (nameOf(*control) == QString::fromUtf8(name))
                return control;
        }
        ADD_FAILURE() << "there is no " << name;
        return nullptr;
    }
    static QString nameOf(QWidget& widget) {
        QAccessibleInterface* const face = QAccessible::queryAccessibleInterface(&widget);
        return face ? face->text(QAccessible::Name) : QString();
    }

    /// A click on it, at a share of its width.
    void click(QWidget* control, double across = 0.5) {
        QTest::mouseClick(control->window()->windowHandle(), Qt::LeftButton, {},
                          pointOn(control, across));
        rest();
    }
    void click(const char* name) { click(find(name)); }
    void doubleClick(QWidget* control) {
        QTest::mouseDClick(control->window()->windowHandle(), Qt::LeftButton, {},
                           pointOn(control, 0.5));
        rest();
    }
    static QPoint pointOn(QWidget* control, double across) {
        return control->mapTo(control->window(), QPoint(qRound((control->width() - 1) * across),
                                                        control->height() / 2));
    }
    void key(int which, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(QGuiApplication::focusWindow(), Qt::Key(which), modifiers);
        rest();
    }
    /// Walks there by Tab.
    void tabTo(QWidget* control) {
        for (int steps = 0; QApplication::focusWidget() != control; ++steps) {
            ASSERT_LT(steps, 60) << "cannot be reached by Tab: "
                                 << control->accessibleName().toStdString();
            key(Qt::Key_Tab);
        }
    }

    QAction* menuItem(const char* text) const {
        for (const QAction* const menu : window->menuBar()->actions())
            for (QAction* const item : menu->menu()->actions())
                if (item->text() == QString::fromUtf8(text))
                    return item;
        return nullptr;
    }

    UpdateSource updateSource;
    std::unique_ptr<UpdateChecker> updates;
    std::unique_ptr<MainWindow> window;
};

} // namespace quorel::test
