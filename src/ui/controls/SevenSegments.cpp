#include "ui/controls/SevenSegments.h"

#include <QPolygonF>
#include <QTransform>

namespace quorel::sevensegments {

namespace {

constexpr double kThick = 3.9;
constexpr double kGap = 0.45; // half of what separates two segments
constexpr double kBetween = 4.5;
constexpr double kLean = -0.09;

/// A bar between two corners of the digit with pointed ends, so that neighbours meet in a mitre.
QPolygonF bar(QPointF from, QPointF to) {
    const double h = kThick / 2;
    if (from.y() == to.y()) {
        const double a = from.x() + kGap;
        const double b = to.x() - kGap;
        const double y = from.y();
        return {{{a, y}, {a + h, y - h}, {b - h, y - h}, {b, y}, {b - h, y + h}, {a + h, y + h}}};
    }
    const double a = from.y() + kGap;
    const double b = to.y() - kGap;
    const double x = from.x();
    return {{{x, a}, {x + h, a + h}, {x + h, b - h}, {x, b}, {x - h, b - h}, {x - h, a + h}}};
}

QPolygonF segment(int number, double x) {
    const double left = x + kThick / 2;
    const double right = x + kDigitWidth - kThick / 2;
    const double top = kThick / 2;
    const double middle = kDigitHeight / 2;
    const double bottom = kDigitHeight - kThick / 2;
    switch (number) {
    case 0:
        return bar({left, top}, {right, top});
    case 1:
        return bar({right, top}, {right, middle});
    case 2:
        return bar({right, middle}, {right, bottom});
    case 3:
        return bar({left, bottom}, {right, bottom});
    case 4:
        return bar({left, middle}, {left, bottom});
    case 5:
        return bar({left, top}, {left, middle});
    default:
        return bar({left, middle}, {right, middle});
    }
}

void addColon(QPainterPath& path, double x) {
    for (const double y : {kDigitHeight * 0.3, kDigitHeight * 0.7})
        path.addRoundedRect(QRectF(x, y - kThick / 2, kThick, kThick), 0.8, 0.8);
}

/// From one place's left to that of the next.
double advanceOf(QChar place) {
    return (place == QLatin1Char(':') ? kThick : kDigitWidth) + kBetween;
}

} // namespace

unsigned segmentsOf(QChar character) {
    constexpr unsigned kDigits[] = {0x3f, 0x06, 0x5b, 0x4f, 0x66, 0x6d, 0x7d, 0x07, 0x7f, 0x6f};
    if (character >= QLatin1Char('0') && character <= QLatin1Char('9'))
        return kDigits[character.unicode() - '0'];
    return character == QLatin1Char('-') ? 0x40 : 0;
}

double widthOf(const QString& places) {
    double width = kDigitHeight * -kLean;
    for (const QChar place : places)
        width += advanceOf(place);
    return std::max(0.0, width - kBetween);
}

QPainterPath shapeOf(const QString& text, const QString& places) {
    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    double x = 0;
    for (qsizetype index = 0; index < places.size(); ++index) {
        const QChar character = index < text.size() ? text[index] : QLatin1Char(' ');
        if (character == QLatin1Char(':'))
            addColon(path, x);
        const unsigned lit = segmentsOf(character);
        for (int number = 0; number < 7; ++number) {
            if (lit >> number & 1U) {
                path.addPolygon(segment(number, x));
                path.closeSubpath();
            }
        }
        x += advanceOf(places[index]);
    }
    // Leaning around the foot of the digits; shifted back so that nothing lies left of 0.
    return QTransform(1, 0, kLean, 1, kDigitHeight * -kLean, 0).map(path);
}

} // namespace quorel::sevensegments
