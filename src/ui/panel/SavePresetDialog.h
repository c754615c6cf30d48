#pragma once

#include <QDialog>

class QLabel;
class QLineEdit;

namespace quorel {

class PlayerController;

/// Asks for a name and saves the equaliser's gains under it.
class SavePresetDialog final : public QDialog {
    Q_OBJECT

  public:
    SavePresetDialog(PlayerController& player, QWidget* parent);

    void accept() override;

  private:
    void typed();

    PlayerController& player_;
    QLineEdit* const name_;
    QLabel* const refusal_;
};

} // namespace quorel
