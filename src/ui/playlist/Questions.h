#pragma once

#include <QUuid>

class QWidget;

namespace quorel {

class PlayerController;

// What is asked before tracks go. Both return at once; what was asked about is done when the user
// says so.

void askToClear(PlayerController& player, const QUuid& playlist, QWidget* parent);
/// Only a playlist with tracks is asked about.
void askToClose(PlayerController& player, const QUuid& playlist, QWidget* parent);

} // namespace quorel
