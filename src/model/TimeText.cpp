#include "model/TimeText.h"

#include <cmath>
#include <limits>

namespace quorel {

namespace {

constexpr long long kHour = 3600;
constexpr long long kDay = 24 * kHour;

/// Halves round away from zero; lengths beyond all clocks stop at the largest integer.
long long wholeSeconds(double seconds) {
    return seconds < 0x1p62 ? std::llround(seconds) : std::numeric_limits<long long>::max();
}

QString minutesAndSeconds(long long seconds) {
    return QString::asprintf("%lld:%02lld", seconds / 60, seconds % 60);
}

} // namespace

QString formatTime(std::optional<double> seconds) {
    if (!seconds || !std::isfinite(*seconds) || *seconds < 0)
        return QStringLiteral(u"\u2013:\u2013\u2013");
    const long long s = wholeSeconds(*seconds);
    if (s < kHour)
        return minutesAndSeconds(s);
    return QString::asprintf("%lld:%02lld:%02lld", s / kHour, s % kHour / 60, s % 60);
}

QString formatTotalDuration(std::optional<double> seconds) {
    if (!seconds || !std::isfinite(*seconds) || *seconds <= 0)
        return {};
    const long long s = wholeSeconds(*seconds);
    if (s < kHour)
        return minutesAndSeconds(s);
    if (s < kDay)
        return QString::asprintf("%lldh %lldm", s / kHour, s % kHour / 60);
    return QString::asprintf("%lldd %lldh", s / kDay, s % kDay / kHour);
}

} // namespace quorel
