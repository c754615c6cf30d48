#pragma once

#include <QMenu>
#include <QUuid>

namespace quorel {

class PlayerController;

/// What can be done with a playlist, from its tab. Destroys itself when it is closed.
class TabMenu final : public QMenu {
    Q_OBJECT

  public:
    /// With a null id: what can be done beside the tabs.
    TabMenu(PlayerController& player, const QUuid& playlist, QWidget* parent);

  Q_SIGNALS:
    void renameRequested(const QUuid& playlist);
    void loadRequested();
    void saveRequested(const QUuid& playlist);
    void clearRequested(const QUuid& playlist);
    void closeRequested(const QUuid& playlist);

  private:
    void addRenaming();
    void addMoving();
    void addEnding();

    PlayerController& player_;
    const QUuid playlist_;
};

} // namespace quorel
