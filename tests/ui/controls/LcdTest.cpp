#include "Window.h"
#include "ui/controls/LcdDigits.h"

#include <QImage>

using namespace quorel;

namespace {

QImage pictureOf(const QString& text, double scale) {
    Window window(scale);
    auto& lcd = window.with(new LcdDigits, LcdDigits().sizeHint());
    lcd.showTime(text);
    return lcd.grab().toImage();
}

bool isLit(const QImage& image, QPointF at) {
    return image.pixelColor(at.toPoint()).green() > 190;
}

/// The bounds of what is lit.
QRectF litArea(const QImage& image) {
    QRect area;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (isLit(image, QPointF(x, y)))
                area |= QRect(x, y, 1, 1);
        }
    }
    return area;
}

} // namespace

TEST(LcdDigits, LightsTheSegmentsOfEachCharacter) {
    // Top, upper right, lower right, bottom, lower left, upper left, middle: shares of an 8's area.
    const QPointF kSegments[] = {{0.56, 0.06}, {0.86, 0.27}, {0.80, 0.73}, {0.44, 0.94},
                                 {0.14, 0.73}, {0.20, 0.27}, {0.50, 0.50}};
    const struct {
        char character;
        const char* lit;
    } kCases[] = {{'0', "1111110"}, {'1', "0110000"}, {'2', "1101101"}, {'3', "1111001"},
                  {'4', "0110011"}, {'5', "1011011"}, {'6', "1011111"}, {'7', "1110000"},
                  {'8', "1111111"}, {'9', "1111011"}, {'-', "0000001"}, {' ', "0000000"}};
    for (const double scale : {1.0, 1.5}) {
        const QRectF area = litArea(pictureOf(QStringLiteral("8"), scale));
        ASSERT_GT(area.height(), 20 * scale);
        for (const auto& row : kCases) {
            const QImage image = pictureOf(QString(QLatin1Char(row.character)), scale);
            std::string lit;
            for (const QPointF& share : kSegments)
                lit += isLit(image, area.topLeft() + QPointF(share.x() * (area.width() - 1),
                                                             share.y() * (area.height() - 1)))
                           ? '1'
                           : '0';
            EXPECT_EQ(lit, row.lit) << row.character << " x" << scale;
        }
    }
}

TEST(LcdDigits, EveryTimeFitsAndDigitsStayInPlace) {
    for (const char* text : {"0:00", "-12:34", "1:23:45", "-10:00:00", "100:00:00"}) {
        const QImage image = pictureOf(QString::fromLatin1(text), 1);
        const QRectF area = litArea(image);
        EXPECT_GT(area.left(), 1) << text;
        EXPECT_LT(area.right(), 117) << text;
    }
    // The last digit is where it was, whatever stands before it.
    const QRect last(92, 0, 26, 44);
    EXPECT_EQ(pictureOf(QStringLiteral("1:47"), 1).copy(last),
              pictureOf(QStringLiteral("-12:47"), 1).copy(last));
}
