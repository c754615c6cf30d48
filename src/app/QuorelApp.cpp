#include "app/QuorelApp.h"

#include "audio/AudioEngine.h"
#include "audio/output/NullOutput.h"
#include "audio/output/PulseOutput.h"
#include "desktop/ActivationToken.h"
#include "desktop/AnimationSetting.h"
#include "desktop/FileManager.h"
#include "desktop/Mpris.h"
#include "desktop/SingleInstance.h"
#include "desktop/SuspendInhibition.h"
#include "model/FileUri.h"
#include "ui/AppIcon.h"
#include "ui/theme/Motion.h"
#include "update/ProductAddresses.h"

#include <QApplication>
#include <QDesktopServices>
#include <QMenu>
#include <QSystemTrayIcon>

namespace quorel {

namespace {

std::unique_ptr<PlayerEngine> makeEngine(Clock& clock, bool nullOutput) {
    std::unique_ptr<Output> output;
    if (nullOutput)
        output = std::make_unique<NullOutput>(clock);
    else
        output = std::make_unique<PulseOutput>(clock);
    return std::make_unique<AudioEngine>(clock, std::move(output), SourceWorker::Mode::Threaded);
}

UpdateSource updateSource() {
    return {.feed = updateFeed(),
            .installedVersion = QCoreApplication::applicationVersion(),
            .settingsFile = UpdateChecker::standardSettingsFile(),
            .openInBrowser = [](const QUrl& page) { QDesktopServices::openUrl(page); },
            .tls = {}};
}

void showFile(const QString& path) {
    showInFileManager(path, [folder = path.left(path.lastIndexOf(u'/') + 1)] {
        QDesktopServices::openUrl(QUrl::fromEncoded(fileUri(folder).toLatin1()));
    });
}

} // namespace

QuorelApp::QuorelApp(const CommandLine& line, const QString& stateFile,
                     std::future<LoadedState> loading, SingleInstance& instance)
    : paths_(line.paths)
    , instance_(instance)
    , player_({.clock = clock_,
               .engine = makeEngine(clock_, line.nullOutput),
               .stateFile = stateFile,
               .output = line.outputUid,
               .loading = std::move(loading)})
    , updates_(clock_, updateSource())
    , window_(player_, updates_, clock_)
    , signals_([] { quit(); }) {
    QGuiApplication::setQuitOnLastWindowClosed(false);
    connect(&window_, &MainWindow::shownFirst, this, &QuorelApp::settleIn);
    connect(&window_, &MainWindow::closeRequested, this, &QuorelApp::windowClosed);
    connect(&window_, &MainWindow::quitRequested, this, [] { quit(); });
    connect(&window_, &MainWindow::showFileRequested, this, &showFile);
    connect(&instance_, &SingleInstance::received, this,
            [this](const QStringList& paths, const QByteArray& token) {
                useActivationToken(token);
                window_.raiseWindow();
                open(paths);
            });
}

QuorelApp::~QuorelApp() = default;

void QuorelApp::show() {
    window_.show();
    // One that begins minimised, or behind a locked screen, is not painted yet.
    settling_ =
        clock_.startTimer(std::chrono::seconds(1), Clock::Repeat::Once, [this] { settleIn(); });
}

/// All that need not be there for the first picture.
void QuorelApp::settleIn() {
    if (mpris_)
        return;
    player_.start(paths_.isEmpty());
    open(paths_);
    instance_.start();
    mpris_ = std::make_unique<Mpris>(player_, [] { quit(); });
    mpris_->start();
    suspendInhibition_ = std::make_unique<SuspendInhibition>(player_);
    suspendInhibition_->start();
    askForAnimations(this, [] { setReducedAnimation(true); });
    updates_.check(false);
}

void QuorelApp::open(const QStringList& paths) {
    if (!paths.isEmpty())
        player_.importPaths(paths, {.playFirst = true});
}

/// A window that nothing could bring back would leave a program behind that nobody can end.
void QuorelApp::windowClosed() {
    const bool comesBack = instance_.canBeFound() || (mpris_ && mpris_->isOffered()) ||
                           QSystemTrayIcon::isSystemTrayAvailable();
    if (player_.settings().quitOnClose || !comesBack)
        quit();
    else
        showTrayIcon();
}

void QuorelApp::showTrayIcon() {
    if (tray_ || !QSystemTrayIcon::isSystemTrayAvailable())
        return;
    tray_ = std::make_unique<QSystemTrayIcon>(appIcon(false));
    tray_->setToolTip(QStringLiteral("Quorel"));
    auto* const menu = new QMenu(&window_);
    menu->addAction(tr("Show Quorel"), &window_, &MainWindow::raiseWindow);
    menu->addAction(tr("Play or Pause"), &player_, &PlayerController::playPause);
    menu->addSeparator();
    menu->addAction(tr("Quit"), this, [] { quit(); });
    tray_->setContextMenu(menu);
    connect(tray_.get(), &QSystemTrayIcon::activated, &window_, &MainWindow::raiseWindow);
    tray_->show();
}

void QuorelApp::quit() {
    QCoreApplication::quit();
}

} // namespace quorel
