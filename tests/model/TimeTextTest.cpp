#include "model/TimeText.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace quorel;

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
const QString kDashes = QStringLiteral(u"–:––");

struct Case {
    std::optional<double> seconds;
    QString time;
    QString total;
};

} // namespace

TEST(TimeText, writesPositionsAndTotals) {
    const Case kCases[] = {
        {std::nullopt, kDashes, {}},
        {std::nan(""), kDashes, {}},
        {kInfinity, kDashes, {}},
        {-1, kDashes, {}},
        {-0.2, kDashes, {}},
        {0, QStringLiteral("0:00"), {}},
        {0.4, QStringLiteral("0:00"), QStringLiteral("0:00")},
        {59.49, QStringLiteral("0:59"), QStringLiteral("0:59")},
        {59.5, QStringLiteral("1:00"), QStringLiteral("1:00")},
        {187, QStringLiteral("3:07"), QStringLiteral("3:07")},
        {2525, QStringLiteral("42:05"), QStringLiteral("42:05")},
        {3599.4, QStringLiteral("59:59"), QStringLiteral("59:59")},
        {3599.5, QStringLiteral("1:00:00"), QStringLiteral("1h 0m")},
        {3729, QStringLiteral("1:02:09"), QStringLiteral("1h 2m")},
        {7559, QStringLiteral("2:05:59"), QStringLiteral("2h 5m")},
        {86399.4, QStringLiteral("23:59:59"), QStringLiteral("23h 59m")},
        {86400, QStringLiteral("24:00:00"), QStringLiteral("1d 0h")},
        {90061, QStringLiteral("25:01:01"), QStringLiteral("1d 1h")},
        {360000, QStringLiteral("100:00:00"), QStringLiteral("4d 4h")},
        {1e300, QStringLiteral("2562047788015215:30:07"), QStringLiteral("106751991167300d 15h")},
    };
    for (const Case& c : kCases) {
        EXPECT_EQ(formatTime(c.seconds), c.time) << c.seconds.value_or(-9);
        EXPECT_EQ(formatTotalDuration(c.seconds), c.total) << c.seconds.value_or(-9);
    }
}
