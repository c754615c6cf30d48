#include "ui/WindowFixture.h"
#include "ui/controls/FloatingValueLabel.h"
#include "ui/controls/LcdDigits.h"
#include "ui/controls/Sliders.h"
#include "ui/visualisers/VisualizationView.h"

#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <algorithm>

using namespace quorel;
using namespace quorel::test;

namespace {

class PanelTest : public WindowTest {
  protected:
    /// What can be seen of playback: the playing letter, and > playing, = paused or . stopped.
    std::string state() const {
        const PlaybackState& now = controller->playback();
        return playing() + std::string(now.isPlaying() ? ">" : now.isLoaded() ? "=" : ".");
    }
    /// The value that floats over a slider, if any.
    std::string floating() const {
        for (const auto* const label : window->findChildren<FloatingValueLabel*>())
            if (label->isVisible())
                return label->text().toStdString();
        return {};
    }
    void press(QWidget* slider, double across) {
        QTest::mousePress(window->windowHandle(), Qt::LeftButton, {}, pointOn(slider, across));
        rest();
    }
    void moveTo(QWidget* slider, double across) {
        QTest::mouseMove(window->windowHandle(), pointOn(slider, across));
        rest();
    }
    void release(QWidget* slider, double across) {
        QTest::mouseRelease(window->windowHandle(), Qt::LeftButton, {}, pointOn(slider, across));
        rest();
    }
};

} // namespace

TEST_F(PanelTest, EveryTransportControlByMouseAndByKeyboard) {
    const struct {
        const char* control;
        const char* state;
    } kSteps[] = {
        {"Play", "A>"},           {"Next track", "B>"}, {"Pause", "B="},      {"Pause", "B>"},
        {"Previous track", "A>"}, {"Play", "A>"},       {"Next track", "B>"}, {"Pause", "B="},
        {"Play", "B>"},           {"Stop", "-."},
    };
    for (const bool byKeyboard : {false, true}) {
        open();
        for (const auto& step : kSteps) {
            advance(1);
            auto* const control = find<QAbstractButton>(step.control);
            ASSERT_TRUE(control && control->isEnabled()) << step.control;
            if (byKeyboard) {
                tabTo(control);
                key(Qt::Key_Return);
                advance(0.1);
            } else {
                click(control);
                advance(0.1);
                EXPECT_FALSE(control->hasFocus()) << "a click takes the keys from the list";
            }
            EXPECT_EQ(state(), step.state) << step.control << (byKeyboard ? " by keyboard" : "");
        }
    }
    for (const char* const name : {"Mute", "Unmute"}) {
        click(name);
        EXPECT_EQ(controller->settings().isMuted, std::string_view(name) == "Mute");
    }
}

TEST_F(PanelTest, WhatCannotBeUsedIsDisabled) {
    const auto usable = [this] {
        std::string all;
        for (const char* const name :
             {"Previous track", "Play", "Pause", "Stop", "Next track", "Position"})
            all += find<QWidget>(name)->isEnabled() ? name[0] : '-';
        return all;
    };
    open();
    EXPECT_EQ(usable(), "PP--N-");
    play('A');
    EXPECT_EQ(usable(), "PPPSNP");
    play('D');
    EXPECT_EQ(usable(), "PPPS-P");
    saved.playlists = {letters("")};
    open();
    EXPECT_EQ(usable(), "------");
}

TEST_F(PanelTest, SlidersAreDragged) {
    open();
    play('A');
    engine->takeLog();
    auto* const seek = find<FillSlider>("Position");
    press(seek, 0.25);
    moveTo(seek, 0.4);
    EXPECT_EQ(engine->takeLog(), "") << "seeks only when it is let go";
    EXPECT_EQ(floating(), "0:08");
    advance(1);
    EXPECT_NEAR(seek->value(), 0.4, 0.01) << "the hand holds it while the track goes on";
    release(seek, 0.5);
    EXPECT_EQ(engine->takeLog(), "k");
    EXPECT_NEAR(controller->playback().currentTime(), 10, 0.3);
    advance(1);
    EXPECT_EQ(floating(), "");

    auto* const volume = find<FillSlider>("Volume");
    press(volume, 0.3);
    moveTo(volume, 0.8);
    EXPECT_NEAR(engine->volume, controller->settings().volume, 1e-9);
    EXPECT_GT(controller->settings().volume, 0.7);
    EXPECT_EQ(floating(), std::to_string(qRound(controller->settings().volume * 100)) + '%');
    release(volume, 1);
    EXPECT_EQ(controller->settings().volume, 1);
    advance(1);
    EXPECT_EQ(stored().settings.volume, 1);

    auto* const pan = find<PanSlider>("Balance");
    press(pan, 0.1);
    release(pan, 0);
    EXPECT_EQ(controller->settings().pan, -1);
    EXPECT_EQ(floating(), "L100%");
    doubleClick(pan);
    EXPECT_EQ(controller->settings().pan, 0);
    EXPECT_EQ(floating(), "C");
    advance(1);
    EXPECT_EQ(stored().settings.pan, 0);
}

TEST_F(PanelTest, TimeAndVisualisationChangeByClick) {
    open();
    play('A');
    advance(2);
    auto* const time = window->findChild<LcdDigits*>();
    for (const bool remaining : {true, false}) {
        const QString before = time->toolTip();
        click(time);
        EXPECT_EQ(controller->settings().showRemainingTime, remaining);
        EXPECT_NE(time->toolTip(), before);
        EXPECT_EQ(time->accessibleDescription().startsWith(u'-'), remaining);
    }
    auto* const view = window->findChild<VisualizationView*>();
    QSet<VisualizationMode> seen;
    const auto see = [&] {
        EXPECT_FALSE(seen.contains(controller->settings().visualization));
        EXPECT_TRUE(view->toolTip().contains(
            QLatin1String(rawValue(controller->settings().visualization)), Qt::CaseInsensitive));
        seen += controller->settings().visualization;
    };
    see();
    click(view);
    see();
    tabTo(view);
    key(Qt::Key_Return);
    see();
    key(Qt::Key_V, Qt::ControlModifier | Qt::ShiftModifier);
    see();
    menuItem("Next Visualization")->trigger();
    rest();
    see();
    click(view);
    EXPECT_EQ(controller->settings().visualization, saved.settings.visualization);
}

TEST_F(PanelTest, ModePanel) {
    open();
    QWidget* const opener = find("Mode: normal");
    const struct {
        const char* row;
        PlaybackMode mode;
        const char* checked;
        const char* name;
    } kSteps[] = {
        {"Auto-stop after track", PlaybackMode::StopAfter, "Auto-stop after track",
         "Mode: auto-stop"},
        {"Repeat track", PlaybackMode::One, "Repeat track", "Mode: repeat one"},
        {"Shuffle", PlaybackMode::One, "Repeat track,Shuffle", "Mode: repeat one, shuffle"},
        {"Repeat playlist", PlaybackMode::All, "Repeat playlist,Shuffle",
         "Mode: repeat all, shuffle"},
        {"Shuffle", PlaybackMode::All, "Repeat playlist", "Mode: repeat all"},
        {"Normal", PlaybackMode::Normal, "Normal", "Mode: normal"},
        {"Normal", PlaybackMode::Normal, "Normal", "Mode: normal"},
    };
    for (const bool byKeyboard : {false, true}) {
        click(opener);
        for (const auto& step : kSteps) {
            auto* const row = find<QAbstractButton>(step.row);
            if (byKeyboard) {
                tabTo(row);
                key(Qt::Key_Space);
            } else {
                click(row);
            }
            EXPECT_EQ(controller->settings().pbMode, step.mode) << step.row;
            QStringList checked;
            for (const auto* const each : front().findChildren<QAbstractButton*>())
                if (each->isChecked())
                    checked += each->text();
            EXPECT_EQ(checked.join(u',').toStdString(), step.checked) << step.row;
            EXPECT_EQ(nameOf(*opener).toStdString(), step.name);
        }
        EXPECT_EQ(state(), "-.") << "Space in a pop-over is for its rows";
        key(Qt::Key_Escape);
        EXPECT_FALSE(QApplication::activePopupWidget());
    }
}

TEST_F(PanelTest, PopOversClose) {
    open();
    for (const char* const opener : {"Mode: normal", "Equalizer"}) {
        QWidget* const button = find(opener);
        const auto isOpen = [] { return QApplication::activePopupWidget() != nullptr; };
        tabTo(button);
        key(Qt::Key_Return);
        EXPECT_TRUE(isOpen()) << opener;
        EXPECT_TRUE(front().focusWidget()) << "the first control has the focus";
        key(Qt::Key_Escape);
        EXPECT_FALSE(isOpen()) << opener;
        EXPECT_TRUE(button->hasFocus());
        click(button);
        EXPECT_TRUE(isOpen()) << opener;
        // A press on its own button closes it, and does not open it again.
        QWidget* const panel = &front();
        QTest::mouseClick(panel->windowHandle(), Qt::LeftButton, {},
                          panel->mapFromGlobal(button->mapToGlobal(button->rect().center())));
        rest();
        EXPECT_FALSE(isOpen()) << opener;
        click(button);
        QTest::mouseClick(front().windowHandle(), Qt::LeftButton, {}, QPoint(-200, -20));
        rest();
        EXPECT_FALSE(isOpen()) << opener;
    }
}

TEST_F(PanelTest, EqualizerFollowsTheController) {
    open();
    click("Equalizer");
    auto* const on = find<QAbstractButton>("Equalizer");
    auto* const presets = front().findChild<QComboBox*>();
    auto* const band = find<EQBandSlider>("1000 Hz");
    click(on, 0.1);
    EXPECT_TRUE(engine->eqEnabled);
    band->setFocus(Qt::TabFocusReason);
    key(Qt::Key_PageUp);
    EXPECT_EQ(engine->eqGains[5], 3);
    advance(1);
    EXPECT_EQ(stored().settings.eqGains.at(5), 3);
    click(find<QAbstractButton>("Reset"));
    EXPECT_FALSE(on->isChecked());
    EXPECT_EQ(band->value(), 0);
    // What others change while the panel is open, such as another window.
    const EqPreset& preset = kEqPresets.back();
    controller->applyEQPreset(preset.name);
    controller->setEQEnabled(true);
    rest();
    EXPECT_TRUE(on->isChecked());
    EXPECT_EQ(presets->currentData().toString(), preset.name);
    for (const auto* const slider : front().findChildren<EQBandSlider*>())
        EXPECT_EQ(slider->value(), controller->settings().eqGains.at(
                                       front().findChildren<EQBandSlider*>().indexOf(slider)));
    EXPECT_FALSE(find("Delete this preset")->isVisible());
    controller->saveCustomEQPreset(QStringLiteral("Mine"));
    rest();
    EXPECT_EQ(presets->currentText(), QStringLiteral("Mine"));
    click("Delete this preset");
    EXPECT_EQ(presets->findText(QStringLiteral("Mine")), -1);
    EXPECT_EQ(controller->settings().eqPreset, kEqPresets.front().name);
}

TEST_F(PanelTest, PresetIsSaved) {
    open();
    controller->setEQGain(0, 5);
    const struct {
        const char* typed;
        bool refuses;
        const char* saved;
    } kNames[] = {
        {"flat", true, ""},
        {"  Flat ", true, ""},
        {"   ", false, ""},
        {" My own ", false, "My own"},
    };
    for (const auto& row : kNames) {
        click("Equalizer");
        // The dialog runs a loop of its own; it is filled in from there.
        bool wasAsked = false;
        QTimer whenOpen;
        whenOpen.callOnTimeout([&] {
            auto* const dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            if (!dialog)
                return;
            whenOpen.stop();
            EXPECT_TRUE(QTest::qWaitForWindowActive(dialog));
            wasAsked = true;
            auto* const name = find<QLineEdit>("Preset name");
            EXPECT_TRUE(name->hasFocus());
            QTest::keyClicks(name, QString::fromUtf8(row.typed));
            EXPECT_EQ(find<QPushButton>("Save")->isEnabled(), !name->text().trimmed().isEmpty());
            key(Qt::Key_Return);
            EXPECT_EQ(dialog->isVisible(), !*row.saved) << row.typed;
            const auto labels = dialog->findChildren<QLabel*>();
            const bool says = std::ranges::any_of(labels, [](const QLabel* label) {
                return label->text() == QLatin1String("Built-in preset names can't be reused.");
            });
            EXPECT_EQ(says, row.refuses) << row.typed;
            if (dialog->isVisible())
                key(Qt::Key_Escape);
        });
        whenOpen.start(1);
        click("Save current EQ as a preset");
        EXPECT_TRUE(wasAsked);
        rest();
    }
    EXPECT_EQ(controller->settings().customEQPresets.keys(), QStringList{QStringLiteral("My own")});
    EXPECT_EQ(controller->settings().eqPreset, QStringLiteral("My own"));
    EXPECT_EQ(controller->settings().customEQPresets.first().first(), 5);
}
