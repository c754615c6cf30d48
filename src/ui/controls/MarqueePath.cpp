#include "ui/controls/MarqueePath.h"

#include <algorithm>

namespace quorel {

Clock::Duration MarqueePath::glide() const {
    return std::chrono::duration_cast<Clock::Duration>(
        std::chrono::duration<double>(std::max(excess, 1.0) / kSpeed));
}

double MarqueePath::offsetAt(Clock::Duration elapsed) const {
    const Clock::Duration half = kRest + glide();
    const Clock::Duration inHalf = std::max(elapsed % half - kRest, Clock::Duration(0));
    const double share = std::chrono::duration<double>(inHalf) / glide();
    return excess * (elapsed / half % 2 == 0 ? share : 1 - share);
}

std::optional<Clock::Duration> MarqueePath::restLeft(Clock::Duration elapsed) const {
    const Clock::Duration inHalf = elapsed % (kRest + glide());
    if (inHalf < kRest)
        return kRest - inHalf;
    return std::nullopt;
}

} // namespace quorel
