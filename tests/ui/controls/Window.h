#pragma once

#include "ui/theme/ApplyTheme.h"
#include "ui/theme/Scale.h"

#include <gtest/gtest.h>

#include <QTest>
#include <QWidget>

namespace quorel {

/// A window to put controls into, at scale 1 unless a test sets another.
struct Window : QWidget {
    explicit Window(double scale = 1) {
        setInterfaceScale(scale);
        resize(600, 400);
        show();
    }
    ~Window() override { setInterfaceScale(1); }

    /// Puts it there and shows it at that size, in pixels.
    template <typename Control>
    Control& with(Control* control, QSize size) {
        control->setParent(this);
        control->setGeometry(QRect(QPoint(40, 80), size));
        control->show();
        return *control;
    }
};

} // namespace quorel
