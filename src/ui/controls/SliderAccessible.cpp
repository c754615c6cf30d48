#include "ui/controls/SliderAccessible.h"

#include "ui/controls/ValueSlider.h"

#include <QAccessibleWidget>

namespace quorel {

namespace {

class SliderAccessible final : public QAccessibleWidget, public QAccessibleValueInterface {
  public:
    explicit SliderAccessible(ValueSlider* slider)
        : QAccessibleWidget(slider, QAccessible::Slider) {}

    void* interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::ValueInterface)
            return static_cast<QAccessibleValueInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }

    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Value ? slider().valueText() : QAccessibleWidget::text(kind);
    }

    QVariant currentValue() const override { return slider().value(); }
    void setCurrentValue(const QVariant& value) override { slider().edit(value.toDouble()); }
    QVariant minimumValue() const override { return slider().range().lowest; }
    QVariant maximumValue() const override { return slider().range().highest; }
    QVariant minimumStepSize() const override { return slider().range().step; }

  private:
    ValueSlider& slider() const { return *static_cast<ValueSlider*>(widget()); }
};

QAccessibleInterface* describe(const QString&, QObject* object) {
    auto* slider = qobject_cast<ValueSlider*>(object);
    return slider ? new SliderAccessible(slider) : nullptr;
}

} // namespace

void makeSlidersAccessible() {
    static const bool installed = [] {
        QAccessible::installFactory(describe);
        return true;
    }();
    Q_UNUSED(installed);
}

} // namespace quorel
