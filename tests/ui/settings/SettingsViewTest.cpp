#include "ui/settings/SettingsView.h"

#include "player/ControllerFixture.h"
#include "ui/controls/Sliders.h"
#include "ui/controls/Switch.h"
#include "ui/theme/ApplyTheme.h"

#include <gmock/gmock.h>

#include <QAccessible>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QTabBar>
#include <QTest>

namespace quorel::test {

namespace {

using S = AppSettings;
using testing::Contains;
using testing::ElementsAre;

class SettingsViewTest : public ControllerTest {
  protected:
    SettingsViewTest() {
        for (bool S::*const on : {&S::trimSilence, &S::fadePlayOn, &S::fadePauseOn, &S::fadeStopOn,
                                  &S::fadeChangeOn, &S::compOn, &S::loudness})
            saved.settings.*on = true;
    }
    void TearDown() override {
        view.reset();
        setInterfaceScale(1);
        ControllerTest::TearDown();
    }

    SettingsView& openSettings(bool canStayOnTop = true) {
        launch();
        view = std::make_unique<SettingsView>(*controller, canStayOnTop, nullptr);
        view->show();
        return *view;
    }
    const S& now() const { return controller->settings(); }

    /// As an assistive technology hears it; that of a picker is its text, told beside its label.
    static QString nameOf(QWidget& control) {
        return QAccessible::queryAccessibleInterface(&control)->text(QAccessible::Name);
    }
    template <class Control>
    Control& named(const QString& name) const {
        for (Control* const control : view->findChildren<Control*>()) {
            if (control->accessibleName() == name || nameOf(*control) == name)
                return *control;
        }
        throw std::runtime_error("there is no " + name.toStdString());
    }
    Switch& turn(const QString& name) const { return named<Switch>(name); }
    FillSlider& slide(const QString& name) const { return named<FillSlider>(name); }
    QComboBox& pick(const QString& name) const { return named<QComboBox>(name); }
    QPushButton& button(const QString& name) const { return named<QPushButton>(name); }

    static std::vector<std::string> labelsIn(const QWidget& widget) {
        std::vector<std::string> texts;
        for (const QLabel* const label : widget.findChildren<QLabel*>())
            texts.push_back(label->text().toStdString());
        return texts;
    }
    static std::vector<std::string> itemsOf(const QComboBox& picker) {
        std::vector<std::string> texts;
        texts.reserve(std::size_t(picker.count()));
        for (int i = 0; i < picker.count(); ++i)
            texts.push_back(picker.itemText(i).toStdString());
        return texts;
    }

    std::unique_ptr<SettingsView> view;
};

TEST_F(SettingsViewTest, CancelPutsBackWhatIsBeingDragged) {
    openSettings();
    const S before = now();
    FillSlider& slider = slide(QStringLiteral("Silence threshold"));
    QTest::mousePress(&slider, Qt::LeftButton, {}, {slider.width() / 4, slider.height() / 2});
    QTest::keyClick(view.get(), Qt::Key_Escape);
    EXPECT_EQ(now(), before);
}

TEST_F(SettingsViewTest, SwitchesChangeTheirFieldsAndCancelPutsThemBack) {
    openSettings();
    const S before = now();
    const struct {
        const char* name;
        bool S::*field;
    } kSwitches[] = {{"Always on top", &S::alwaysOnTop},
                     {"Resume playback on startup", &S::resumeOnStartup},
                     {"Gapless playback", &S::gapless},
                     {"Trim silence", &S::trimSilence},
                     {"Fade: Play", &S::fadePlayOn},
                     {"Fade: Pause", &S::fadePauseOn},
                     {"Fade: Stop", &S::fadeStopOn},
                     {"Fade: Track change", &S::fadeChangeOn},
                     {"Loudness normalization", &S::normalize},
                     {"Compressor", &S::compOn},
                     {"Tone compensation", &S::loudness},
                     {"Show “QUOREL” wordmark on application icon", &S::showWordmarkIcon}};
    for (const auto& [name, field] : kSwitches) {
        S expected = now();
        expected.*field = !(expected.*field);
        Switch& control = turn(QString::fromUtf8(name));
        EXPECT_EQ(control.isChecked(), before.*field) << name;
        QTest::keyClick(&control, Qt::Key_Space);
        EXPECT_EQ(now(), expected) << name;
    }
    EXPECT_FALSE(engine->gaplessEnabled); // at once
    controller->setVolume(0.25);          // not a field of this window
    QTest::keyClick(view.get(), Qt::Key_Escape);
    EXPECT_FALSE(view->isVisible());
    S expected = before;
    expected.volume = 0.25;
    EXPECT_EQ(now(), expected);
    EXPECT_TRUE(engine->gaplessEnabled);
}

TEST_F(SettingsViewTest, SlidersHaveTheirRangesStepsAndUnits) {
    openSettings();
    const S before = now();
    const struct {
        const char* name;
        double S::*field;
        double lowest, highest, step;
        const char* lowestText;
        const char* belowHighestText;
    } kSliders[] = {
        {"Silence threshold", &S::trimThresholdDb, -90, -30, 1, "-90 dB", "-31 dB"},
        {"Max trim per edge", &S::trimMaxSec, 1, 15, 1, "1 s", "14 s"},
        {"Length of the fade: Play", &S::fadePlayMs, 50, 5000, 50, "50 ms", "4950 ms"},
        {"Length of the fade: Pause", &S::fadePauseMs, 50, 5000, 50, "50 ms", "4950 ms"},
        {"Length of the fade: Stop", &S::fadeStopMs, 50, 5000, 50, "50 ms", "4950 ms"},
        {"Length of the fade: Track change", &S::fadeChangeMs, 50, 5000, 50, "50 ms", "4950 ms"},
        {"Visualization brightness", &S::ledBrightness, 0.2, 1, 0.05, "20%", "95%"},
        {"Playlist font size", &S::playlistFontSize, 10, 36, 0.5, "10.0 pt", "35.5 pt"},
        {"Interface scale", &S::uiScale, 0.5, 1.5, 0.1, "50%", "140%"}};
    for (const auto& [name, field, lowest, highest, step, lowestText, belowHighestText] :
         kSliders) {
        FillSlider& slider = slide(QString::fromUtf8(name));
        EXPECT_DOUBLE_EQ(slider.value(), before.*field) << name;
        QTest::keyClick(&slider, Qt::Key_Home);
        EXPECT_EQ(now().*field, lowest) << name;
        EXPECT_THAT(labelsIn(*slider.parentWidget()), Contains(lowestText)) << name;
        QTest::keyClick(&slider, Qt::Key_End);
        EXPECT_EQ(now().*field, highest) << name;
        QWheelEvent wheel({5, 5}, slider.mapToGlobal(QPointF(5, 5)), {}, {0, -120}, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(&slider, &wheel);
        EXPECT_DOUBLE_EQ(now().*field, highest - step) << name;
        EXPECT_THAT(labelsIn(*slider.parentWidget()), Contains(belowHighestText)) << name;
    }
    button(QStringLiteral("Reset")).click();
    EXPECT_EQ(now().uiScale, 1);
    EXPECT_FALSE(button(QStringLiteral("Reset")).isEnabled());
    view->close(); // as its close button does
    EXPECT_EQ(now(), before);
}

TEST_F(SettingsViewTest, PickersOfferTheirChoicesInOrder) {
    openSettings();
    const S before = now();
    const struct {
        const char* name;
        std::vector<std::string> texts;
        std::function<int()> chosen;
        std::vector<int> values;
    } kPickers[] = {{"When window is closed",
                     {"Keep playing in background", "Quit Quorel"},
                     [this] { return int(now().quitOnClose); },
                     {0, 1}},
                    {"Style",
                     {"Gentle — light leveling", "Warm — smooth glue", "Punch — keeps transients",
                      "Radio — dense & even", "Maximum — loud & flat"},
                     [this] { return int(now().compPreset); },
                     {0, 1, 3, 2, 4}},
                    {"Strength",
                     {"Gentle", "Medium", "Strong"},
                     [this] { return int(now().loudnessStrength); },
                     {0, 1, 2}},
                    {"Visualization",
                     {"Spectrum analyzer", "Oscilloscope", "LED level meter", "VU meter"},
                     [this] { return int(now().visualization); },
                     {0, 1, 3, 2}}};
    for (const auto& [name, texts, chosen, values] : kPickers) {
        QComboBox& picker = pick(QString::fromUtf8(name));
        EXPECT_EQ(itemsOf(picker), texts);
        EXPECT_EQ(values.at(std::size_t(picker.currentIndex())), chosen()) << name;
        QTest::keyClick(&picker, Qt::Key_End);
        EXPECT_EQ(chosen(), values.back()) << name;
        for (std::size_t i = values.size() - 1; i-- > 0;) {
            QTest::keyClick(&picker, Qt::Key_Up);
            EXPECT_EQ(chosen(), values[i]) << name;
        }
    }
    button(QStringLiteral("Cancel")).click();
    EXPECT_EQ(now(), before);
}

TEST_F(SettingsViewTest, SavesWhatIsKept) {
    openSettings();
    turn(QStringLiteral("Loudness normalization")).click();
    QTest::keyClick(view.get(), Qt::Key_Return); // Save is the default
    EXPECT_FALSE(view->isVisible());
    advance(10);
    EXPECT_TRUE(stored().settings.normalize);
}

TEST_F(SettingsViewTest, DimsWhatIsSwitchedOff) {
    openSettings();
    const struct {
        bool S::*on;
        QList<QWidget*> controls;
    } kCases[] = {{&S::trimSilence,
                   {&slide(QStringLiteral("Silence threshold")),
                    &slide(QStringLiteral("Max trim per edge"))}},
                  {&S::fadePlayOn, {&slide(QStringLiteral("Length of the fade: Play"))}},
                  {&S::fadePauseOn, {&slide(QStringLiteral("Length of the fade: Pause"))}},
                  {&S::fadeStopOn, {&slide(QStringLiteral("Length of the fade: Stop"))}},
                  {&S::fadeChangeOn, {&slide(QStringLiteral("Length of the fade: Track change"))}},
                  {&S::compOn, {&pick(QStringLiteral("Style"))}},
                  {&S::loudness, {&pick(QStringLiteral("Strength"))}}};
    for (std::size_t i = 0; i < std::size(kCases); ++i) {
        for (const bool on : {true, false}) {
            controller->changeSettings([&](S& settings) { settings.*kCases[i].on = on; });
            for (const QWidget* const control : kCases[i].controls)
                EXPECT_EQ(control->isEnabled(), on) << i;
        }
    }
}

TEST_F(SettingsViewTest, ShowsNoVisualizationWhileTheyAreOff) {
    openSettings();
    QComboBox& picker = pick(QStringLiteral("Visualization"));
    const FillSlider& brightness = slide(QStringLiteral("Visualization brightness"));
    EXPECT_EQ(picker.currentText(), QStringLiteral("VU meter"));
    const auto show = [this](VisualizationMode mode) {
        controller->changeSettings([mode](S& settings) { settings.visualization = mode; });
    };
    show(VisualizationMode::Off);
    EXPECT_EQ(picker.currentIndex(), -1);
    EXPECT_EQ(picker.currentText(), QString());
    EXPECT_FALSE(brightness.isEnabled());
    show(VisualizationMode::Scope);
    EXPECT_EQ(picker.currentText(), QStringLiteral("Oscilloscope"));
    EXPECT_TRUE(brightness.isEnabled());
}

TEST_F(SettingsViewTest, ListsOutputDevicesAsTheyComeAndGo) {
    saved.settings.outputDeviceUID = QStringLiteral("dac");
    openSettings();
    QComboBox& picker = pick(QStringLiteral("Output device"));
    const auto plug = [this](const QList<OutputDevice>& devices, const QString& notice = {}) {
        engine->devices = devices;
        engine->notice = notice;
        engine->onOutputDevicesChanged();
    };
    const OutputDevice dac{1, QStringLiteral("dac"), QStringLiteral("Fine DAC")};
    const OutputDevice phones{2, QStringLiteral("phones"), QStringLiteral("Headphones")};
    EXPECT_THAT(itemsOf(picker), ElementsAre("System default", "dac (not connected)"));
    EXPECT_EQ(picker.currentIndex(), 1);
    plug({phones, dac});
    EXPECT_THAT(itemsOf(picker), ElementsAre("System default", "Headphones", "Fine DAC"));
    EXPECT_EQ(picker.currentText(), QStringLiteral("Fine DAC"));
    plug({phones}, QStringLiteral("Silence."));
    EXPECT_THAT(itemsOf(picker),
                ElementsAre("System default", "Headphones", "Fine DAC (not connected)"));
    EXPECT_EQ(picker.currentIndex(), 2);
    EXPECT_THAT(labelsIn(*view), Contains("Silence."));
    QTest::keyClick(&picker, Qt::Key_Up);
    EXPECT_EQ(now().outputDeviceUID, QStringLiteral("phones"));
    EXPECT_EQ(engine->output, "phones");
    EXPECT_THAT(itemsOf(picker), ElementsAre("System default", "Headphones"));
    QTest::keyClick(&picker, Qt::Key_Home);
    EXPECT_EQ(now().outputDeviceUID, std::nullopt);
    EXPECT_EQ(engine->output, "");
    view->reject();
    EXPECT_EQ(engine->output, "dac");
}

TEST_F(SettingsViewTest, SearchesForSilenceAnewWhenASliderIsReleased) {
    saved.playlists[0].tracks[0].trimStart = 1;
    openSettings();
    const auto isTrimmed = [this] {
        return controller->activePlaylist().tracks.at(0).trimStart.has_value();
    };
    FillSlider& slider = slide(QStringLiteral("Silence threshold"));
    QTest::mousePress(&slider, Qt::LeftButton, {}, {slider.width() - 4, slider.height() / 2});
    EXPECT_THAT(labelsIn(*slider.parentWidget()), Contains("-30 dB"));
    EXPECT_TRUE(isTrimmed());
    EXPECT_EQ(now().trimThresholdDb, -60);
    QTest::mouseRelease(&slider, Qt::LeftButton, {}, {slider.width() - 4, slider.height() / 2});
    EXPECT_FALSE(isTrimmed());
    EXPECT_EQ(now().trimThresholdDb, -30);
}

TEST_F(SettingsViewTest, SaysWhereAWindowCannotStayOnTop) {
    openSettings(false);
    const Switch& control = turn(QStringLiteral("Always on top"));
    EXPECT_FALSE(control.isEnabled());
    EXPECT_FALSE(control.accessibleDescription().isEmpty());
    EXPECT_THAT(labelsIn(*view), Contains(control.accessibleDescription().toStdString()));
}

TEST_F(SettingsViewTest, KeysTurnThePages) {
    openSettings();
    ASSERT_TRUE(QTest::qWaitForWindowActive(view.get())); // its shortcuts work only then
    auto& tabs = *view->findChild<QTabBar*>();
    const char* const kPages[] = {"Playback", "Fades", "Processing", "Output", "Interface"};
    for (const Qt::Key key : {Qt::Key_PageDown, Qt::Key_Tab})
        for (const char* const page : kPages) {
            EXPECT_EQ(tabs.tabText(tabs.currentIndex()), QLatin1String(page));
            QTest::keyClick(view->focusWidget(), key, Qt::ControlModifier);
        }
    QTest::keyClick(view->focusWidget(), Qt::Key_PageUp, Qt::ControlModifier);
    EXPECT_EQ(tabs.currentIndex(), 4);
}

} // namespace

} // namespace quorel::test
