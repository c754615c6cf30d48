#pragma once

#include "app/CommandLine.h"
#include "app/QuitSignals.h"
#include "core/QtClock.h"
#include "player/PlayerController.h"
#include "ui/MainWindow.h"
#include "update/UpdateChecker.h"

#include <QObject>
#include <memory>

class QSystemTrayIcon;

namespace quorel {

class Mpris;
class SingleInstance;
class SuspendInhibition;

/// The running program: one controller, one update checker, one window, and what ties them to the
/// desktop.
class QuorelApp final : public QObject {
    Q_OBJECT

  public:
    /// `instance` is the first, and outlives the app.
    QuorelApp(const CommandLine& line, const QString& stateFile, std::future<LoadedState> loading,
              SingleInstance& instance);
    ~QuorelApp() override;

    void show();

  private:
    void settleIn();
    void open(const QStringList& paths);
    void windowClosed();
    void showTrayIcon();
    static void quit();

    QtClock clock_;
    const QStringList paths_;
    SingleInstance& instance_;
    PlayerController player_;
    UpdateChecker updates_;
    MainWindow window_;
    QuitSignals signals_;
    std::unique_ptr<Timer> settling_;
    std::unique_ptr<Mpris> mpris_; ///< there once it has settled in
    std::unique_ptr<SuspendInhibition> suspendInhibition_;
    std::unique_ptr<QSystemTrayIcon> tray_;
};

} // namespace quorel
