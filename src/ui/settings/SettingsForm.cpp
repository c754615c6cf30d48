#include "ui/settings/SettingsForm.h"

#include "player/PlayerController.h"
#include "ui/controls/Switch.h"
#include "ui/settings/FormParts.h"

#include <QComboBox>
#include <QLabel>
#include <QVBoxLayout>
#include <memory>

namespace quorel {

SettingsForm::SettingsForm(PlayerController& player, QWidget* parent)
    : QWidget(parent)
    , player_(player) {
    auto* const column = new QVBoxLayout(this);
    column->addStretch(1);
}

void SettingsForm::change(const std::function<void(AppSettings&)>& edit) {
    player_.changeSettings(edit);
}

void SettingsForm::follow(std::function<void(const AppSettings&)> show) {
    show(player_.settings());
    connect(&player_, &PlayerController::settingsChanged, this,
            [this, show = std::move(show)] { show(player_.settings()); });
}

void SettingsForm::enableWith(bool AppSettings::*on, const QList<QWidget*>& controls) {
    follow([on, controls](const AppSettings& settings) {
        for (QWidget* const control : controls)
            control->setEnabled(settings.*on);
    });
}

void SettingsForm::beginPlate() {
    auto* const plate = new FormPlate(this);
    auto* const column = static_cast<QVBoxLayout*>(layout());
    column->insertWidget(column->count() - 1, plate);
    plate_ = static_cast<QBoxLayout*>(plate->layout());
}

void SettingsForm::addToPlate(QWidget* row) {
    plate_->addWidget(row);
}

FormCaption* SettingsForm::addCaption(QWidget* control, const QString& text) {
    auto* const caption = new FormCaption(text, this);
    control->setAccessibleDescription(text);
    // Closer to its row than rows are to each other.
    const std::unique_ptr<QLayoutItem> row(plate_->takeAt(plate_->count() - 1));
    auto* const pair = new QVBoxLayout;
    pair->setSpacing(0);
    pair->addWidget(row->widget());
    pair->addWidget(caption);
    plate_->addLayout(pair);
    return caption;
}

Switch* SettingsForm::addSwitch(const QString& text, bool AppSettings::*field) {
    auto* const control = new Switch(text, Switch::Slot::AtRightEdge, this);
    addToPlate(control);
    connect(control, &QAbstractButton::clicked, this, [this, field](bool on) {
        change([field, on](AppSettings& settings) { settings.*field = on; });
    });
    follow([control, field](const AppSettings& settings) { control->setChecked(settings.*field); });
    return control;
}

SliderRow* SettingsForm::addSlider(const SliderRow::Look& look, double AppSettings::*field,
                                   Apply apply) {
    auto* const row = new SliderRow(look, this);
    addToPlate(row);
    FillSlider* const slider = &row->slider();
    const auto store = [this, slider, field] {
        change(
            [field, value = slider->value()](AppSettings& settings) { settings.*field = value; });
    };
    if (apply == Apply::WhileDragged)
        connect(slider, &ValueSlider::valueEdited, this, store);
    else
        connect(slider, &ValueSlider::editingEnded, this, store);
    follow([row, field](const AppSettings& settings) { row->showValue(settings.*field); });
    return row;
}

QComboBox* SettingsForm::addPickerRow(const QString& label, const QStringList& texts,
                                      Qt::Orientation direction) {
    auto* const row = new QWidget(this);
    auto* const line = new QBoxLayout(
        direction == Qt::Horizontal ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom, row);
    line->setContentsMargins(0, 0, 0, 0);
    auto* const title = new QLabel(label, row);
    auto* const picker = new QComboBox(row);
    picker->addItems(texts);
    picker->setAccessibleName(label);
    picker->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    title->setBuddy(picker);
    line->addWidget(title, 2);
    line->addWidget(picker, 3); // the pickers of all pages stand one below the other
    addToPlate(row);
    return picker;
}

void SettingsForm::addChoices(QComboBox* picker, std::function<int(const AppSettings&)> shown,
                              std::function<void(AppSettings&, int)> choose) {
    connect(picker, &QComboBox::activated, this, [this, choose = std::move(choose)](int index) {
        change([&](AppSettings& settings) { choose(settings, index); });
    });
    follow([picker, shown = std::move(shown)](const AppSettings& settings) {
        picker->setCurrentIndex(shown(settings));
    });
}

} // namespace quorel
