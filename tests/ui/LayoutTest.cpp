#include "ui/AllWindows.h"
#include "ui/TextProbe.h"
#include "ui/controls/FloatingValueLabel.h"
#include "ui/panel/PlayerPanel.h"
#include "ui/playlist/PlaylistArea.h"
#include "ui/theme/BasePainter.h"

#include <QScrollArea>

using namespace quorel;
using namespace quorel::test;

namespace {

class LayoutTest : public AllWindowsTest {
  protected:
    void setScale(double scale, bool animated) {
        window->setScale(scale, animated);
        advance(0.3);
        rest();
    }
    /// Every control lies within what it stands on, beside its neighbours, and has the room that
    /// it asks for.
    static void expectRoom(QWidget& parent, const std::string& where) {
        QList<QWidget*> children;
        for (QObject* const child : parent.children()) {
            auto* const widget = qobject_cast<QWidget*>(child);
            if (widget && widget->isVisible() && !widget->isWindow() &&
                !qobject_cast<FloatingValueLabel*>(widget))
                children += widget;
        }
        for (QWidget* const child : children) {
            const std::string name = where + ": " + child->metaObject()->className() + " " +
                                     child->accessibleName().toStdString();
            EXPECT_TRUE(parent.rect().contains(child->geometry())) << name << " sticks out";
            const QSize least = child->minimumSizeHint().expandedTo(child->minimumSize());
            EXPECT_GE(child->width(), least.width()) << name << " is cut";
            EXPECT_GE(child->height(), least.height()) << name << " is cut";
            for (QWidget* const other : children)
                EXPECT_TRUE(other == child || !other->geometry().intersects(child->geometry()))
                    << name << " overlaps " << other->metaObject()->className();
            if (!qobject_cast<QAbstractScrollArea*>(child) || qobject_cast<QScrollArea*>(child))
                expectRoom(*child, where);
        }
    }
    static void expectReadable(QWidget& shown, const std::string& where) {
        const TextProbe probe(shown);
        EXPECT_FALSE(probe.texts().empty()) << where;
        probe.expectReadable(where);
    }
    static void expectNothingCut(QWidget& shown, const std::string& where) {
        expectRoom(shown, where);
        expectReadable(shown, where);
    }
    int playlistHeight() const { return window->findChild<PlaylistArea*>()->height(); }
};

} // namespace

TEST_F(LayoutTest, NothingIsCutAtAnyScale) {
    publish("2.0", QByteArray(300, 'x').replace("xxxxx", "word "));
    for (const double scale : {0.5, 1.0, 1.5}) {
        const std::string at = " at " + std::to_string(scale);
        for (const bool atStart : {true, false}) {
            saved.settings.uiScale = atStart ? scale : 1;
            saved.settings.isMuted = true;
            open();
            setScale(scale, !atStart);
            play('A');
            for (const auto mode : {VisualizationMode::Spectrum, VisualizationMode::Vu})
                for (const int width : {1, 560, 1400}) {
                    controller->changeSettings([&](AppSettings& s) { s.visualization = mode; });
                    window->resize(qRound(width * scale), 1);
                    rest();
                    EXPECT_GE(window->width(), window->minimumSizeHint().width());
                    expectNothingCut(*window->centralWidget(),
                                     "width " + std::to_string(width) + at);
                }
        }
        for (const auto& scenes : {panels(), dialogs()})
            for (const Scene& scene : scenes) {
                expectNothingCut(*scene.show(), scene.name + at);
                leave();
            }
        for (const Scene& scene : laidOutByQt()) {
            expectReadable(*scene.show(), scene.name + at);
            leave();
        }
        window->resize(px(QSizeF(740, 640)));
        for (const bool withPlaylist : {true, false}) {
            const QSize size = window->size();
            check(true);
            expectNothingCut(*window->centralWidget(), "banner" + at);
            EXPECT_EQ(window->width(), size.width()) << "a long text widens the window" << at;
            updates->dismiss();
            rest();
            EXPECT_EQ(window->size(), size) << at;
            if (withPlaylist)
                controller->togglePlaylistVisible();
            rest();
        }
    }
}

TEST_F(LayoutTest, WindowGrowsWithTheScale) {
    for (const bool animated : {false, true}) {
        open();
        window->resize(740, 620);
        const QSize first = window->size();
        const QSize least = window->minimumSize();
        for (const double scale : {1.5, 0.5, 1.25, 1.0}) {
            setScale(scale, animated);
            EXPECT_EQ(uiScale(), scale);
            EXPECT_NEAR(window->width(), first.width() * scale, 3) << scale;
            EXPECT_NEAR(window->height(), first.height() * scale, 3) << scale;
            EXPECT_NEAR(window->minimumWidth(), least.width() * scale, 12) << scale;
            EXPECT_NEAR(window->minimumHeight(), least.height() * scale, 12) << scale;
        }
    }
}

TEST_F(LayoutTest, ScaleMovesUnlessMotionIsReduced) {
    for (const bool reduced : {false, true}) {
        qputenv("QUOREL_REDUCED_MOTION", reduced ? "1" : "0");
        open();
        window->resize(740, 620);
        const int width = window->width();
        controller->setUIScale(1.5);
        EXPECT_EQ(uiScale(), reduced ? 1.5 : 1.0);
        advance(0.1);
        if (!reduced) {
            EXPECT_GT(window->width(), width);
            EXPECT_LT(window->width(), width * 1.5);
        }
        // Another wish in the middle of the way.
        controller->setUIScale(0.75);
        advance(0.5);
        rest();
        EXPECT_EQ(uiScale(), 0.75);
        EXPECT_NEAR(window->width(), width * 0.75, 3);
    }
    qputenv("QUOREL_REDUCED_MOTION", "0");
}

TEST_F(LayoutTest, WithoutThePlaylistOnlyTheWidthChanges) {
    open();
    window->resize(700, 640);
    rest();
    const int list = playlistHeight();
    key(Qt::Key_P, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_FALSE(window->findChild<PlaylistArea*>()->isVisible());
    EXPECT_EQ(window->height(), 640 - list);
    const int height = window->height();
    window->resize(900, 800);
    rest();
    EXPECT_EQ(window->size(), QSize(900, height));
    for (const bool animated : {false, true}) {
        setScale(1.5, animated);
        const int tall = window->height();
        EXPECT_NEAR(tall, height * 1.5, 6);
        window->resize(1400, tall + 300);
        rest();
        EXPECT_EQ(window->height(), tall) << (animated ? "animated" : "");
        setScale(1, animated);
        EXPECT_EQ(window->height(), height);
    }
    click("Playlist");
    EXPECT_EQ(playlistHeight(), list);
    EXPECT_EQ(window->height(), 640);
    window->resize(900, 800);
    EXPECT_EQ(window->height(), 800);
}

TEST_F(LayoutTest, BeginsWithoutThePlaylist) {
    saved.settings.showPlaylist = false;
    for (const double scale : {1.0, 1.5}) {
        saved.settings.uiScale = scale;
        open();
        EXPECT_EQ(window->height(), window->minimumSizeHint().height());
        const int height = window->height();
        window->resize(window->width(), height + 200);
        rest();
        EXPECT_EQ(window->height(), height);
        click("Playlist");
        EXPECT_EQ(window->height(), height + playlistHeight());
        EXPECT_GE(playlistHeight(), px(240));
    }
}

TEST_F(LayoutTest, FullScreen) {
    for (const bool withPlaylist : {true, false}) {
        saved.settings.showPlaylist = withPlaylist;
        open();
        const QSize before = window->size();
        const auto panelHeight = [this] { return window->findChild<PlayerPanel*>()->height(); };
        const int panelBefore = panelHeight();
        QAction* const toggle = menuItem(withPlaylist ? "Hide Playlist" : "Show Playlist");
        for (const bool byMenu : {false, true}) {
            const auto turn = [&] {
                if (byMenu)
                    menuItem("Full Screen")->trigger();
                else
                    key(Qt::Key_F11);
                rest();
            };
            turn();
            EXPECT_TRUE(window->isFullScreen() && controller->fullscreenActive());
            EXPECT_EQ(window->size(), window->screen()->size());
            EXPECT_EQ(panelHeight(), panelBefore) << "its controls stay together";
            EXPECT_FALSE(toggle->isEnabled() || find("Playlist")->isEnabled());
            EXPECT_TRUE(menuItem("Full Screen")->isChecked());
            key(Qt::Key_P, Qt::ControlModifier | Qt::ShiftModifier);
            EXPECT_EQ(controller->settings().showPlaylist, withPlaylist);
            expectNothingCut(*window->centralWidget(), "full screen");
            turn();
            EXPECT_FALSE(window->isFullScreen() || controller->fullscreenActive());
            EXPECT_EQ(window->size(), before);
            EXPECT_TRUE(toggle->isEnabled() && find("Playlist")->isEnabled());
        }
    }
}
