#include "ui/controls/ButtonAccessible.h"

#include "ui/controls/PanelButton.h"
#include "ui/controls/PopoverPanel.h"

#include <QAccessibleWidget>

namespace quorel {

namespace {

/// As Qt's own, but with the pop-over that is open as its child: for Qt such windows are the
/// program's, which leaves them out.
class ButtonAccessible final : public QAccessibleWidget {
  public:
    explicit ButtonAccessible(PanelButton* button)
        : QAccessibleWidget(button) {}

    QAccessible::Role role() const override {
        return button().isCheckable() ? QAccessible::CheckBox : QAccessible::Button;
    }
    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.checkable = button().isCheckable();
        state.checked = button().isChecked();
        state.pressed = button().isDown();
        return state;
    }
    QString text(QAccessible::Text kind) const override {
        const QString told = QAccessibleWidget::text(kind);
        return kind == QAccessible::Name && told.isEmpty() ? button().text() : told;
    }
    QStringList actionNames() const override {
        QStringList names = QAccessibleWidget::actionNames();
        if (button().isEnabled())
            names.prepend(button().isCheckable() ? toggleAction() : pressAction());
        return names;
    }
    void doAction(const QString& name) override {
        if (name == pressAction() || name == toggleAction())
            button().click();
        else
            QAccessibleWidget::doAction(name);
    }

    int childCount() const override { return popover() ? 1 : 0; }
    QAccessibleInterface* child(int index) const override {
        return index == 0 ? QAccessible::queryAccessibleInterface(popover()) : nullptr;
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        return popover() && child && child->object() == popover() ? 0 : -1;
    }

  private:
    PanelButton& button() const { return *static_cast<PanelButton*>(widget()); }
    PopoverPanel* popover() const {
        auto* const panel =
            button().findChild<PopoverPanel*>(QString(), Qt::FindDirectChildrenOnly);
        return panel && panel->isVisible() ? panel : nullptr;
    }
};

class PopoverAccessible final : public QAccessibleWidget {
  public:
    explicit PopoverAccessible(PopoverPanel* panel)
        : QAccessibleWidget(panel, QAccessible::Dialog) {}

    QAccessibleInterface* parent() const override {
        return QAccessible::queryAccessibleInterface(widget()->parentWidget());
    }
};

QAccessibleInterface* describe(const QString&, QObject* object) {
    if (auto* const button = qobject_cast<PanelButton*>(object))
        return new ButtonAccessible(button);
    auto* const panel = qobject_cast<PopoverPanel*>(object);
    return panel ? new PopoverAccessible(panel) : nullptr;
}

} // namespace

void makeButtonsAccessible() {
    static const bool installed = [] {
        QAccessible::installFactory(describe);
        return true;
    }();
    Q_UNUSED(installed);
}

} // namespace quorel
