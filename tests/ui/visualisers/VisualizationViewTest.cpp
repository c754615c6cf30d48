#include "ui/visualisers/VisualizationView.h"

#include "ui/theme/Theme.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QSignalSpy>
#include <QTest>
#include <memory>

namespace quorel {
namespace {

class PaintCount : public QObject {
  public:
    int count = 0;
    bool eventFilter(QObject*, QEvent* event) override {
        count += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
};

class VisualizationViewTest : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        static int argc = 1;
        static char name[] = "test_visualisers";
        static char* argv[] = {name, nullptr};
        qputenv("QT_QPA_PLATFORM", "offscreen");
        application = std::make_unique<QApplication>(argc, argv);
    }
    static void TearDownTestSuite() { application.reset(); }

    void SetUp() override {
        view_.resize(416, 104);
        view_.installEventFilter(&paints_);
    }
    void show() {
        view_.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&view_));
        paintsSinceAsked();
    }
    int paintsSinceAsked() {
        QCoreApplication::processEvents();
        return std::exchange(paints_.count, 0);
    }

    PaintCount paints_;
    VisualizationView view_;

  private:
    static inline std::unique_ptr<QApplication> application;
};

TEST_F(VisualizationViewTest, ClicksWithButtonAndKeys) {
    QSignalSpy clicks(&view_, &VisualizationView::clicked);
    show();
    QTest::mouseClick(&view_, Qt::LeftButton);
    EXPECT_EQ(clicks.count(), 1);
    QTest::mouseClick(&view_, Qt::RightButton);
    EXPECT_EQ(clicks.count(), 1);
    for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) {
        clicks.clear();
        QTest::keyClick(&view_, key);
        EXPECT_EQ(clicks.count(), 1) << key;
    }
    QTest::keyClick(&view_, Qt::Key_A);
    EXPECT_EQ(clicks.count(), 1);
}

TEST_F(VisualizationViewTest, SaysWhatItShows) {
    const std::pair<VisualizationMode, const char*> rows[] = {
        {VisualizationMode::Spectrum, "Visualization: Spectrum — click to change"},
        {VisualizationMode::Scope, "Visualization: Scope — click to change"},
        {VisualizationMode::Vu, "Visualization: Vu — click to change"},
        {VisualizationMode::Led, "Visualization: Led — click to change"},
        {VisualizationMode::Off, "Visualization: Off — click to change"},
    };
    for (const auto& [mode, text] : rows) {
        view_.setMode(mode);
        EXPECT_EQ(view_.toolTip().toStdString(), text);
    }
    const QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(&view_);
    EXPECT_EQ(spoken->role(), QAccessible::Button);
    EXPECT_EQ(spoken->text(QAccessible::Name), QStringLiteral("Visualization"));
    EXPECT_TRUE(spoken->text(QAccessible::Description).contains(QStringLiteral("Off")));
}

TEST_F(VisualizationViewTest, PaintsOnlyWhatChangedAndIsSeen) {
    MeterValues values;
    show();
    const auto paintsAfter = [this](auto change) {
        change();
        return paintsSinceAsked();
    };
    view_.setMode(VisualizationMode::Led);
    EXPECT_EQ(paintsSinceAsked(), 1);
    values.peakLeftDb = -3;
    EXPECT_EQ(paintsAfter([&] { view_.setValues(values); }), 1);
    EXPECT_EQ(paintsAfter([&] { view_.setValues(values); }), 0);
    EXPECT_EQ(paintsAfter([&] { view_.setMode(VisualizationMode::Led); }), 0);
    EXPECT_EQ(paintsAfter([&] { view_.setBrightness(0.5); }), 1);
    EXPECT_EQ(paintsAfter([&] { view_.setBrightness(0.5); }), 0);
    values.vuLeftDb = -3;
    EXPECT_EQ(paintsAfter([&] { view_.setValues(values); }), 0) << "not seen in this mode";

    view_.hide();
    paintsSinceAsked();
    values.peakLeftDb = -6;
    EXPECT_EQ(paintsAfter([&] { view_.setValues(values); }), 0);
    EXPECT_EQ(paintsAfter([&] { view_.setMode(VisualizationMode::Spectrum); }), 0);
}

TEST_F(VisualizationViewTest, EachModeShowsItsValues) {
    MeterValues loud;
    loud.vuLeftDb = loud.peakLeftDb = 0;
    loud.waveform.fill(0.5F);
    loud.spectrumBars.fill(0.9F);
    for (const VisualizationMode mode : kAllCases<VisualizationMode>) {
        view_.setMode(mode);
        view_.setValues({});
        const QImage silent = view_.grab().toImage();
        view_.setValues(loud);
        const bool isOff = mode == VisualizationMode::Off;
        EXPECT_EQ(view_.grab().toImage() == silent, isOff) << view_.toolTip().toStdString();
        EXPECT_EQ(silent.pixelColor(208, 30) == Theme::panelBlack, mode != VisualizationMode::Led)
            << view_.toolTip().toStdString();
    }
}

} // namespace
} // namespace quorel
