#include "ui/theme/Theme.h"

#include "Window.h"
#include "ui/controls/PanelButton.h"
#include "ui/theme/Icons.h"
#include "ui/theme/Motion.h"
#include "ui/theme/Surfaces.h"

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QSpinBox>
#include <QStyle>
#include <QStyleOptionSlider>
#include <set>

using namespace quorel;

TEST(Icons, EveryOneIsDrawnInItsColour) {
    std::set<QByteArray> drawings;
    for (const Icon icon : allIcons()) {
        SCOPED_TRACE(qPrintable(iconName(icon)));
        const QImage image =
            iconPixmap(icon, 24, Theme::gold, 2).toImage().convertToFormat(QImage::Format_ARGB32);
        ASSERT_EQ(image.size(), QSize(48, 48));
        int painted = 0;
        int atEdge = 0;
        for (int y = 0; y < 48; ++y) {
            for (int x = 0; x < 48; ++x) {
                const QColor pixel = image.pixelColor(x, y);
                if (pixel.alpha() == 255) {
                    ++painted;
                    EXPECT_EQ(pixel.rgb(), Theme::gold.rgb());
                }
                atEdge += pixel.alpha() > 0 && (x == 0 || y == 0 || x == 47 || y == 47);
            }
        }
        EXPECT_GT(painted, 48);
        EXPECT_EQ(atEdge, 0) << "it reaches the edge of the grid";
        const QByteArray bytes(reinterpret_cast<const char*>(image.constBits()),
                               image.sizeInBytes());
        EXPECT_TRUE(drawings.insert(bytes).second) << "another looks the same";
    }
}

TEST(Surfaces, EdgesFallOnWholePixels) {
    for (const double scale : {0.5, 0.85, 1.0, 1.5, 2.25}) {
        QImage image(200, 200, QImage::Format_ARGB32_Premultiplied);
        QPainter painter(&image);
        painter.scale(scale, scale);
        const QRectF device =
            painter.deviceTransform().mapRect(crisp(painter, QRectF(3.3, 7.7, 11.1, 0.2)));
        for (const double edge : {device.left(), device.top(), device.right(), device.bottom()})
            EXPECT_NEAR(edge, std::round(edge), 1e-9) << scale;
        EXPECT_GE(device.height(), 1) << scale;
        EXPECT_GE(hairline(painter) * scale, 1 - 1e-9);
    }
}

TEST(Interface, EverythingHasTheSizeOfTheScale) {
    const struct {
        double scale, expected;
    } kCases[] = {{0.5, 0.5}, {1.5, 1.5}, {9, 1.5}, {0.1, 0.5}};
    Window window;
    TransportButton button(Icon::Play);
    QLineEdit line;
    QComboBox combo;
    QSpinBox spin;
    const QWidgetList widgets{&button, &line, &combo, &spin};
    const auto heights = [&] {
        std::vector<double> all;
        for (const QWidget* widget : widgets)
            all.push_back(widget->sizeHint().height());
        all.push_back(QApplication::font().pixelSize());
        all.push_back(QApplication::style()->pixelMetric(QStyle::PM_ScrollBarExtent));
        all.push_back(QApplication::style()->pixelMetric(QStyle::PM_LayoutLeftMargin));
        return all;
    };
    const std::vector<double> plain = heights();
    for (const auto& row : kCases) {
        setInterfaceScale(row.scale);
        const std::vector<double> scaled = heights();
        for (size_t index = 0; index < plain.size(); ++index)
            EXPECT_NEAR(scaled[index], plain[index] * row.expected, 1.01)
                << row.scale << " " << index;
        EXPECT_TRUE(window.updatesEnabled());
    }
    setInterfaceScale(1);
    EXPECT_EQ(heights(), plain);
}

TEST(Interface, AScrollBarsThumbGoesFromEndToEnd) {
    const struct {
        int maximum, page, value;
        double scale;
        int top, height;
    } kCases[] = {
        {0, 10, 0, 1, 0, 200},      {100, 100, 0, 1, 0, 100},         {100, 100, 100, 1, 100, 100},
        {300, 100, 150, 1, 75, 50}, {100000, 10, 100000, 1, 172, 28}, {100000, 10, 0, 0.5, 0, 14}};
    for (const auto& row : kCases) {
        setInterfaceScale(row.scale);
        QStyleOptionSlider bar;
        bar.orientation = Qt::Vertical;
        bar.rect = QRect(0, 0, 12, 200);
        bar.maximum = row.maximum;
        bar.pageStep = row.page;
        bar.sliderPosition = row.value;
        EXPECT_EQ(QApplication::style()->subControlRect(QStyle::CC_ScrollBar, &bar,
                                                        QStyle::SC_ScrollBarSlider),
                  QRect(0, row.top, 12, row.height))
            << row.value << " of " << row.maximum;
    }
    setInterfaceScale(1);
}

TEST(Motion, TheEnvironmentDecidesFirst) {
    qunsetenv("QUOREL_REDUCED_MOTION");
    setReducedAnimation(true);
    EXPECT_TRUE(reducedAnimation());
    qputenv("QUOREL_REDUCED_MOTION", "0");
    EXPECT_FALSE(reducedAnimation());
    setReducedAnimation(std::nullopt);
}
