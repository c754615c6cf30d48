#pragma once

#include "core/Clock.h"
#include "player/PlayerWindow.h"
#include "ui/ScaledFit.h"

#include <QMainWindow>
#include <QPointer>

namespace quorel {

class PlayerController;
class PlayerPanel;
class PlaylistArea;
class SettingsView;
class UpdateBanner;
class UpdateChecker;

/// The one window: banner, player panel, playlist and status line, one below the other. Files can
/// be dropped anywhere on it.
class MainWindow final : public QMainWindow, public PlayerWindow {
    Q_OBJECT

  public:
    /// All of them outlive the window.
    MainWindow(PlayerController& player, UpdateChecker& updates, Clock& clock);
    ~MainWindow() override;

    /// Whether a window can be kept above the others here; the compositor may forbid it.
    static bool canStayOnTop();

    void setAlwaysOnTop(bool onTop) override;
    void setPlaylistShown(bool shown, bool animated) override;
    void setFullScreen(bool fullScreen) override;
    void setScale(double scale, bool animated) override;
    void setWordmarkIcon(bool shown) override;
    void raiseWindow() override;

  Q_SIGNALS:
    void closeRequested(); ///< the window was closed, and is hidden unless someone quits
    void quitRequested();
    void shownFirst();                           ///< it has been painted for the first time
    void showFileRequested(const QString& path); ///< in the file manager

  protected:
    void closeEvent(QCloseEvent* event) override;
    bool event(QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    void refreshTitle();
    void limitHeight();
    void settleIn();
    void showSettings();
    void editTags(const QUuid& track);

    PlayerController& player_;
    QWidget* content_;
    UpdateBanner* banner_; // made in the order in which Tab walks
    PlayerPanel* panel_;
    PlaylistArea* playlist_;
    ScaledFit scaledFit_;
    QPointer<SettingsView> settings_; ///< while it is open
    int playlistHeight_ = 0;          ///< in base units, while it is hidden
    int normalWidth_ = 0;             ///< from before the full screen
    bool hasWordmark_ = false;
    bool wasPainted_ = false;
};

} // namespace quorel
