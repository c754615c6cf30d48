#include "ui/BannerFixture.h"
#include "ui/StatusBar.h"

#include <QAbstractButton>
#include <QDragEnterEvent>
#include <QMimeData>

using namespace quorel;
using namespace quorel::test;

namespace {

class ShellTest : public WindowTest {
  protected:
    /// Drags addresses to a place in the window and lets go; whether they were taken.
    bool drop(const QList<QUrl>& addresses, QPoint at) {
        QMimeData data;
        data.setUrls(addresses);
        QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(window->windowHandle(), &enter);
        QDragMoveEvent move(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        move.setAccepted(enter.isAccepted()); // as platforms do
        QCoreApplication::sendEvent(window->windowHandle(), &move);
        QDropEvent drop(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(window->windowHandle(), &drop);
        rest();
        return enter.isAccepted() && move.isAccepted() && drop.isAccepted();
    }
    std::string status() const { return window->findChild<StatusBar*>()->text().toStdString(); }
    std::string usable(std::initializer_list<const char*> items) const {
        std::string all;
        for (const char* const item : items) {
            const QAction* const action = menuItem(item);
            all += !action ? '?' : action->isEnabled() ? item[0] : '-';
        }
        return all;
    }
};

} // namespace

TEST_F(ShellTest, TitleAndStatusLine) {
    open();
    const auto title = [this] { return window->windowTitle().toStdString(); };
    EXPECT_EQ(title(), "Quorel");
    EXPECT_EQ(status(), "4 tracks");
    controller->setSearchText(QStringLiteral("b"));
    rest();
    EXPECT_EQ(status(), "1 of 4 tracks");
    controller->setSearchText({});
    play('B');
    EXPECT_EQ(title(), "B — Quorel");
    EXPECT_EQ(status(), "Playing: B   4 tracks");
    controller->nextTrack();
    advance(0.1);
    EXPECT_EQ(title(), "C — Quorel");
    controller->recomputeBPM(idOf('A')); // there is no such file
    rest();
    EXPECT_EQ(status(), "No tempo was found: A   4 tracks");
    Q_EMIT controller->tempoMeasured(controller->activePlaylist().tracks[1], 103.7);
    EXPECT_EQ(status(), "104 BPM: B   4 tracks");
    advance(6);
    EXPECT_EQ(status(), "Playing: C   4 tracks");
    controller->stop();
    controller->selectOnly(idOf('A'));
    controller->removeSelected();
    rest();
    EXPECT_EQ(title(), "Quorel");
    EXPECT_EQ(status(), "3 tracks");
    controller->addPlaylist();
    rest();
    EXPECT_EQ(status(), "0 tracks");

    auto* const line = window->findChild<StatusBar*>();
    const QImage before = line->grab().toImage();
    controller->toggleShuffle();
    rest();
    EXPECT_EQ(line->flags().join(u' ').toStdString(), "GAPLESS SHUFFLE");
    EXPECT_NE(line->grab().toImage(), before);
    EXPECT_TRUE(line->accessibleName().contains(QLatin1String("SHUFFLE")));
}

TEST_F(ShellTest, MenusFollowWhatCanBeDone) {
    const auto playback = {"Play",       "Pause",          "Stop",
                           "Next Track", "Previous Track", "Undo Remove Tracks"};
    saved.playlists = {letters("")};
    open();
    EXPECT_EQ(usable(playback), "-?----");
    saved.playlists = {letters("ABC")};
    open();
    EXPECT_EQ(usable(playback), "P?-NP-");
    play('A');
    EXPECT_EQ(usable(playback), "?PSNP-");
    play('C');
    EXPECT_EQ(usable(playback), "?PS-P-");
    select("B");
    menuItem("Pause")->trigger();
    controller->removeSelected();
    rest();
    EXPECT_EQ(usable(playback), "P?S-PU");
    menuItem("Undo Remove Tracks")->trigger();
    rest();
    EXPECT_EQ(shown(), "ABC");
    EXPECT_EQ(usable(playback), "P?S-P-");
    // Without addresses of its own the program offers none.
    EXPECT_EQ(usable({"Check for Updates…", "Quorel Help", "Quorel Website"}), "---");
    EXPECT_TRUE(menuItem("Hide Playlist"));
    controller->togglePlaylistVisible();
    EXPECT_TRUE(menuItem("Show Playlist"));
    EXPECT_EQ(controller->playlistCount(), 1);
    key(Qt::Key_N, Qt::ControlModifier);
    EXPECT_EQ(controller->playlistCount(), 2);
    bool wantsToQuit = false;
    QObject::connect(window.get(), &MainWindow::quitRequested, [&] { wantsToQuit = true; });
    key(Qt::Key_Q, Qt::ControlModifier);
    EXPECT_TRUE(wantsToQuit);
}

TEST_F(ShellTest, FilesAreDroppedAnywhere) {
    saved.playlists = {letters("")};
    open();
    folder.write("music/1.mp3");
    folder.write("music/caf\xe9.flac"); // no UTF-8
    const QUrl music = QUrl::fromEncoded("file://" + folder.path("music"));
    const QUrl latin = QUrl::fromEncoded("file://" + folder.path("music/caf%E9.flac"));
    const QUrl web(QStringLiteral("https://quorel.invalid/a.mp3"));
    int expected = 0;
    for (const int y : {window->menuBar()->height() + 40, window->height() / 2,
                        window->height() - 60, window->height() - 5}) {
        EXPECT_TRUE(drop({latin, web}, {100, y})) << y;
        EXPECT_EQ(controller->activePlaylist().tracks.size(), ++expected) << y;
        EXPECT_EQ(pathToBytes(controller->activePlaylist().tracks.back().path),
                  folder.path("music/caf\xe9.flac"));
    }
    EXPECT_TRUE(drop({music}, {100, 100}));
    EXPECT_EQ(controller->activePlaylist().tracks.size(), expected + 2);
    EXPECT_FALSE(drop({web}, {100, 100}));
    EXPECT_EQ(controller->activePlaylist().tracks.size(), expected + 2);
}

TEST_F(ShellTest, ClosingAsksOnlyOnce) {
    open();
    int asked = 0;
    QObject::connect(window.get(), &MainWindow::closeRequested, [&] { ++asked; });
    window->close();
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(asked, 1);
    controller->raiseWindow();
    EXPECT_TRUE(window->isVisible());
    window->showMinimized();
    controller->raiseWindow();
    EXPECT_FALSE(window->isMinimized());
}

TEST_F(BannerTest, OffersTheNewVersion) {
    open();
    EXPECT_FALSE(banner()->isVisible());
    EXPECT_TRUE(menuItem("Check for Updates…")->isEnabled());
    check(false);
    ASSERT_TRUE(banner()->isVisible());
    EXPECT_EQ(texts().join(u'|').toStdString(),
              "Quorel 2.0 is available|Better. <b>Much</b> better.");
    click("Hide until next launch");
    EXPECT_FALSE(banner()->isVisible());
    check(false);
    click("Download");
    EXPECT_EQ(opened, QStringList{QStringLiteral("https://quorel.invalid/get")});
    EXPECT_FALSE(banner()->isVisible());
    check(false);
    tabTo(find("Download"));
    for (const char* const next : {"Skip", "Hide until next launch", "Elapsed time"}) {
        key(Qt::Key_Tab);
        EXPECT_EQ(nameOf(*QApplication::focusWidget()).toStdString(), next);
    }
    tabTo(find("Skip"));
    key(Qt::Key_Return);
    EXPECT_FALSE(banner()->isVisible());
    check(false);
    EXPECT_FALSE(banner()->isVisible());
    menuItem("Check for Updates…")->trigger();
    EXPECT_FALSE(menuItem("Check for Updates…")->isEnabled());
    EXPECT_TRUE(QTest::qWaitFor([this] { return banner()->isVisible(); }, 20'000));
    publish("1.0", "");
    updates->dismiss();
    check(true);
    EXPECT_EQ(texts(), QStringList{QStringLiteral("Quorel is up to date")});
    advance(3.1);
    EXPECT_FALSE(banner()->isVisible());
}
