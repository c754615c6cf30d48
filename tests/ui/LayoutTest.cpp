#include "ui/WindowFixture.h"
#include "ui/controls/FloatingValueLabel.h"
#include "ui/controls/ModeRow.h"
#include "ui/controls/PanelButton.h"
#include "ui/playlist/PlaylistArea.h"
#include "ui/theme/Theme.h"

#include <QAbstractScrollArea>
#include <QFontMetricsF>
#include <QListView>

using namespace quorel;
using namespace quorel::test;

namespace {

class LayoutTest : public WindowTest {
  protected:
    void setScale(double scale, bool animated) {
        window->setScale(scale, animated);
        advance(0.3);
        rest();
    }
    /// The room that a painted text takes, with the symbols before it.
    static double widthOfText(QWidget& widget) {
        const auto advance = [](const QString& text) {
            return QFontMetricsF(Theme::font(Theme::TextRole::Strong)).horizontalAdvance(text);
        };
        double units = 0;
        if (const auto* const button = qobject_cast<TextIconButton*>(&widget))
            units = advance(button->text()) + 22 * double(button->icons().size());
        else if (const auto* const row = qobject_cast<ModeRow*>(&widget))
            units = advance(row->text()) + 62;
        return units * uiScale();
    }
    /// Every control lies within what it stands on, beside its neighbours, and has the room that
    /// it asks for.
    static void expectNothingCut(QWidget& parent, const std::string& where) {
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
            EXPECT_GE(child->width(), widthOfText(*child)) << name << "'s text is cut";
            for (QWidget* const other : children)
                EXPECT_TRUE(other == child || !other->geometry().intersects(child->geometry()))
                    << name << " overlaps " << other->metaObject()->className();
            if (!qobject_cast<QAbstractScrollArea*>(child) && !qobject_cast<QMenuBar*>(child))
                expectNothingCut(*child, where);
        }
    }
    int playlistHeight() const { return window->findChild<PlaylistArea*>()->height(); }
};

} // namespace

TEST_F(LayoutTest, NothingIsCutAtAnyScale) {
    for (const double scale : {0.5, 1.0, 1.5})
        for (const bool atStart : {true, false}) {
            saved.settings.uiScale = atStart ? scale : 1;
            saved.settings.pbMode = PlaybackMode::One;
            saved.settings.shuffle = true;
            saved.settings.isMuted = true;
            open();
            setScale(scale, !atStart);
            play('A');
            for (const int width : {1, 560, 1400}) {
                window->resize(qRound(width * scale), 1);
                rest();
                const std::string where =
                    "scale " + std::to_string(scale) + ", width " + std::to_string(window->width());
                EXPECT_GE(window->width(), window->minimumSizeHint().width()) << where;
                expectNothingCut(*window->centralWidget(), where);
            }
            for (const char* const opener : {"Mode: repeat one, shuffle", "Equalizer"}) {
                click(opener);
                expectNothingCut(front(), opener);
                key(Qt::Key_Escape);
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
