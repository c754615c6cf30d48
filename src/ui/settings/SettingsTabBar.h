#pragma once

#include "ui/theme/Icons.h"

#include <QTabBar>

namespace quorel {

/// The tabs of the settings window: symbols above their names.
class SettingsTabBar final : public QTabBar {
    Q_OBJECT

  public:
    explicit SettingsTabBar(QWidget* parent);

    void addTab(Icon icon, const QString& name);

  protected:
    QSize tabSizeHint(int index) const override;
    QSize minimumTabSizeHint(int index) const override { return tabSizeHint(index); }
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    int hovered_ = -1;
};

} // namespace quorel
