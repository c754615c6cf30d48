#pragma once

#include "model/AppSettings.h"
#include "ui/settings/SliderRow.h"

#include <QWidget>
#include <array>
#include <functional>

class QBoxLayout;
class QComboBox;

namespace quorel {

class FormCaption;
class PlayerController;
class Switch;

/// A page of the settings window: rows on plates. Each row is bound to one field: it shows what the
/// settings say whenever they change, and changes them as soon as the user edits it.
class SettingsForm : public QWidget {
    Q_OBJECT

  public:
    template <class Value>
    struct Choice {
        const char* text; ///< translated by the form
        Value value;
    };
    /// When a slider that is being dragged changes its field.
    enum class Apply { WhileDragged, WhenReleased };

  protected:
    /// The controller outlives the form.
    SettingsForm(PlayerController& player, QWidget* parent);

    PlayerController& player() const { return player_; }
    void change(const std::function<void(AppSettings&)>& edit);
    /// Calls it now and with every change of the settings.
    void follow(std::function<void(const AppSettings&)> show);
    /// The controls can be used while that function is on.
    void enableWith(bool AppSettings::*on, const QList<QWidget*>& controls);

    /// The rows that follow stand on a plate of their own.
    void beginPlate();
    Switch* addSwitch(const QString& text, bool AppSettings::*field);
    SliderRow* addSlider(const SliderRow::Look& look, double AppSettings::*field, Apply apply);
    /// Shows nothing chosen where no choice has the field's value.
    template <class Value, std::size_t kCount>
    QComboBox* addPicker(const QString& label, const std::array<Choice<Value>, kCount>& choices,
                         Value AppSettings::*field);
    /// A picker beside its label, or below it.
    QComboBox* addPickerRow(const QString& label, const QStringList& texts,
                            Qt::Orientation direction = Qt::Horizontal);
    /// Explains the control in the row above.
    FormCaption* addCaption(QWidget* control, const QString& text);
    void addToPlate(QWidget* row);

  private:
    void addChoices(QComboBox* picker, std::function<int(const AppSettings&)> shown,
                    std::function<void(AppSettings&, int)> choose);

    PlayerController& player_;
    QBoxLayout* plate_ = nullptr;
};

template <class Value, std::size_t kCount>
QComboBox* SettingsForm::addPicker(const QString& label,
                                   const std::array<Choice<Value>, kCount>& choices,
                                   Value AppSettings::*field) {
    QStringList texts;
    for (const auto& choice : choices)
        texts += tr(choice.text);
    QComboBox* const picker = addPickerRow(label, texts);
    addChoices(
        picker,
        [choices, field](const AppSettings& settings) {
            const auto is = [&](const auto& choice) { return choice.value == settings.*field; };
            const auto found = std::find_if(choices.begin(), choices.end(), is);
            return found == choices.end() ? -1 : int(found - choices.begin());
        },
        [choices, field](AppSettings& settings, int index) {
            settings.*field = choices.at(std::size_t(index)).value;
        });
    return picker;
}

} // namespace quorel
