#include "model/TimeText.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace quorel;

TEST(TimeText, writesPositionsAndTotals) {
    for (const double none : {std::nan(""), std::numeric_limits<double>::infinity(), -1.0, -0.2})
        EXPECT_EQ(formatTime(none) + formatTotalDuration(none), QStringLiteral(u"–:––")) << none;
    EXPECT_EQ(formatTime({}) + formatTotalDuration({}), QStringLiteral(u"–:––"));
    const std::tuple<double, const char*, const char*> kCases[] = {
        {0, "0:00", ""},
        {0.4, "0:00", "0:00"},
        {59.49, "0:59", "0:59"},
        {59.5, "1:00", "1:00"},
        {187, "3:07", "3:07"},
        {2525, "42:05", "42:05"},
        {3599.4, "59:59", "59:59"},
        {3599.5, "1:00:00", "1h 0m"},
        {3729, "1:02:09", "1h 2m"},
        {86399.4, "23:59:59", "23h 59m"},
        {86400, "24:00:00", "1d 0h"},
        {90061, "25:01:01", "1d 1h"},
        {1e300, "2562047788015215:30:07", "106751991167300d 15h"},
    };
    for (const auto& [seconds, time, total] : kCases) {
        EXPECT_EQ(formatTime(seconds).toStdString(), time) << seconds;
        EXPECT_EQ(formatTotalDuration(seconds).toStdString(), total) << seconds;
    }
}
