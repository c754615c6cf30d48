#pragma once

#include <QObject>

class QAction;
class QMenuBar;

namespace quorel {

class PlayerController;
class UpdateChecker;

/// The menu bar: every command, its shortcut, and when it can be used.
class Menus final : public QObject {
    Q_OBJECT

  public:
    /// Fills the bar of `window`, which the dialogs belong to.
    Menus(PlayerController& player, UpdateChecker& updates, QMenuBar& bar, QWidget& window);

  Q_SIGNALS:
    void quitRequested();
    void settingsRequested();
    void showPlayingRequested();

  private:
    void fillFile(QMenuBar& bar);
    void fillEdit(QMenuBar& bar);
    void fillView(QMenuBar& bar);
    void fillPlayback(QMenuBar& bar);
    void fillHelp(QMenuBar& bar);
    void refresh();
    void refreshEdit();

    PlayerController& player_;
    UpdateChecker& updates_;
    QWidget& window_;
    QAction* undoRemove_ = nullptr;
    QList<QAction*> editing_;
    QAction* showPlaylist_ = nullptr;
    QAction* showPlaying_ = nullptr;
    QAction* fullScreen_ = nullptr;
    QAction* playPause_ = nullptr;
    QAction* stop_ = nullptr;
    QAction* next_ = nullptr;
    QAction* previous_ = nullptr;
    QAction* checkForUpdates_ = nullptr;
};

} // namespace quorel
