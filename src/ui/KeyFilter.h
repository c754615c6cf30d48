#pragma once

#include "player/KeyMap.h"

#include <QObject>

namespace quorel {

class PlayerController;

/// Hears every key pressed in the program's windows before the focused control does: arrows seek
/// and change the volume, unless they mean something where the focus is. Installs itself.
class KeyFilter final : public QObject {
    Q_OBJECT

  public:
    explicit KeyFilter(PlayerController& player, QObject* parent);

    /// What has the focus now.
    static FocusContext focusContext();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    PlayerController& player_;
};

/// Whether a text is being edited in the focused control.
bool isEditingText();

} // namespace quorel
