#include "ui/visualisers/VisualizationView.h"

#include "ui/Painted.h"
#include "ui/theme/Theme.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QTest>
#include <memory>

namespace quorel {
namespace {

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

    VisualizationViewTest() { view_.resize(416, 104); }

    VisualizationView view_;

  private:
    static inline std::unique_ptr<QApplication> application;
};

TEST_F(VisualizationViewTest, PaintsOnlyWhatChangedAndIsSeen) {
    MeterValues values;
    view_.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&view_));
    test::Painted painted(view_);
    const auto paintsAfter = [&painted](auto change) {
        change();
        return painted.takeTimes();
    };
    EXPECT_EQ(paintsAfter([&] { view_.setMode(VisualizationMode::Led); }), 1);
    values.peakLeftDb = -3;
    EXPECT_EQ(paintsAfter([&] { view_.setValues(values); }), 1);
    EXPECT_EQ(paintsAfter([&] { view_.setValues(values); }), 0);
    EXPECT_EQ(paintsAfter([&] { view_.setMode(VisualizationMode::Led); }), 0);
    EXPECT_EQ(paintsAfter([&] { view_.setBrightness(0.5); }), 1);
    EXPECT_EQ(paintsAfter([&] { view_.setBrightness(0.5); }), 0);
    values.vuLeftDb = -3;
    EXPECT_EQ(paintsAfter([&] { view_.setValues(values); }), 0) << "not seen in this mode";

    view_.hide();
    painted.takeTimes();
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
