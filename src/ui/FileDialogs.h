#pragma once

#include <QUuid>

class QWidget;

namespace quorel {

class PlayerController;

// What the user chooses files by. Each asks, and then has the controller act.

void addFilesOrFolders(PlayerController& player, QWidget* parent);
void loadPlaylistFile(PlayerController& player, QWidget* parent);
/// Of the playlist with that id.
void savePlaylistFile(PlayerController& player, const QUuid& playlist, QWidget* parent);

} // namespace quorel
