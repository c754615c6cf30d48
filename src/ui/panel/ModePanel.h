#pragma once

#include <QObject>

class QWidget;

namespace quorel {

class PlayerController;

/// A pop-over for the playback mode and shuffle, below `button`. Deletes itself when closed.
void showModePanel(PlayerController& player, QWidget* button);

} // namespace quorel
