#pragma once

#include <QList>
#include <QObject>

class QAbstractButton;
class QComboBox;
class QWidget;

namespace quorel {

class EQBandSlider;
class PanelText;
class PlayerController;
class PopoverPanel;
class Switch;

/// A pop-over for the equaliser: on or off, presets, a slider for each band. Deletes itself when
/// closed.
class EQPanel final : public QObject {
    Q_OBJECT

  public:
    static void showAt(PlayerController& player, QWidget* button);

  private:
    EQPanel(PlayerController& player, PopoverPanel* panel);

    QWidget* makeHeader();
    QWidget* makeBands();
    void refresh();
    void fillPresets();
    void askForName();

    PlayerController& player_;
    PopoverPanel* const panel_;
    Switch* on_ = nullptr;
    QComboBox* presets_ = nullptr;
    QAbstractButton* remove_ = nullptr;
    QList<EQBandSlider*> sliders_;
    QList<PanelText*> gains_;
};

} // namespace quorel
