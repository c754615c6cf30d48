#include "ui/settings/SliderRow.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace quorel {

SliderRow::SliderRow(const Look& look, QWidget* parent)
    : QWidget(parent)
    , slider_(new FillSlider(look.range, look.snap, this))
    , value_(new QLabel(this))
    , valueLine_(new QHBoxLayout) {
    slider_->setAccessibleName(look.title);
    slider_->setAccessibleDescription(look.help);
    slider_->setValueText(look.text);
    slider_->setFocusPolicy(Qt::StrongFocus); // the arrows go on where the mouse has set it
    setToolTip(look.help);
    value_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    if (look.titled) {
        auto* const title = new QLabel(look.title, this);
        title->setBuddy(slider_);
        valueLine_->addWidget(title, 1);
    } else {
        valueLine_->addWidget(slider_, 1);
    }
    valueLine_->addWidget(value_);
    column->addLayout(valueLine_);
    if (look.titled)
        column->addWidget(slider_);
    connect(slider_, &ValueSlider::valueEdited, this, &SliderRow::refreshText);
    reserveText();
    refreshText();
}

void SliderRow::addBeforeValue(QWidget* control) {
    valueLine_->insertWidget(valueLine_->count() - 1, control);
}

void SliderRow::showValue(double value) {
    slider_->setValue(value);
    refreshText();
}

void SliderRow::refreshText() {
    value_->setText(slider_->valueText());
}

/// The value's room does not change with the value, so that the slider beside it keeps its length.
void SliderRow::reserveText() {
    value_->setMinimumWidth(value_->fontMetrics().horizontalAdvance(QStringLiteral("5000 ms")));
}

void SliderRow::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::StyleChange)
        reserveText();
}

} // namespace quorel
