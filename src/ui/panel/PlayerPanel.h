#pragma once

#include "core/Clock.h"
#include "ui/theme/StillPicture.h"

#include <QWidget>

namespace quorel {

class DisplayWell;
class FillSlider;
class FloatingValueLabel;
class PanSlider;
class PlayerController;
class TextIconButton;
class TransportButton;
enum class Icon;
enum class KeyNudge;

/// The upper half of the window: display, position, transport, volume and balance, and the buttons
/// that open the panels. It keeps nothing of its own; everything is read from the controller.
class PlayerPanel final : public QWidget {
    Q_OBJECT

  public:
    /// Both outlive the panel.
    PlayerPanel(PlayerController& player, Clock& clock, QWidget* parent);

  Q_SIGNALS:
    void settingsRequested();

  protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    TransportButton* addButton(Icon icon, const QString& name, void (PlayerPanel::*pressed)());
    void makeTransport();
    void makeSound();
    void makeOpeners();
    void layOut();
    void refreshTransport();
    void refreshPosition();
    void refreshSettings();
    void showNudge(KeyNudge what);

    void pressPrevious();
    void pressPlay();
    void pressPause();
    void pressStop();
    void pressNext();
    void pressMute();
    void pressMode();
    void pressEqualizer();
    void pressSettings();
    void pressPlaylist();
    void showSeekTime();

    PlayerController& player_;
    StillPicture metal_;
    DisplayWell* const display_;
    FillSlider* const seek_;
    TransportButton* previous_ = nullptr;
    TransportButton* play_ = nullptr;
    TransportButton* pause_ = nullptr;
    TransportButton* stop_ = nullptr;
    TransportButton* next_ = nullptr;
    TransportButton* mute_ = nullptr;
    FillSlider* volume_ = nullptr;
    PanSlider* pan_ = nullptr;
    TextIconButton* mode_ = nullptr;
    TransportButton* equalizer_ = nullptr;
    TransportButton* settings_ = nullptr;
    TransportButton* playlist_ = nullptr;
    FloatingValueLabel* seekLabel_ = nullptr;
    FloatingValueLabel* volumeLabel_ = nullptr;
    FloatingValueLabel* panLabel_ = nullptr;
};

} // namespace quorel
