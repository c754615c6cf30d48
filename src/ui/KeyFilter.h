#pragma once

#include "player/KeyMap.h"

#include <QObject>
#include <QPointer>

namespace quorel {

class PlayerController;

/// Hears every key pressed in the program's windows before the focused control does: arrows seek
/// and change the volume, unless they mean something where the focus is. A list keeps its up and
/// down when the keyboard led to it, not when it was clicked. Installs itself.
class KeyFilter final : public QObject {
    Q_OBJECT

  public:
    explicit KeyFilter(PlayerController& player, QObject* parent);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    FocusContext contextOf(Qt::Key key) const;
    void followFocus(QWidget* widget, Qt::FocusReason reason);

    PlayerController& player_;
    QPointer<QWidget> enteredList_; ///< the list that has the focus, if the keyboard led to it
};

/// Whether a text is being edited in the focused control.
bool isEditingText();

} // namespace quorel
