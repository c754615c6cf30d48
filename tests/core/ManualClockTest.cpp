#include "core/ManualClock.h"

#include <gtest/gtest.h>

#include <vector>

using namespace quorel;
using namespace std::chrono_literals;

TEST(ManualClock, firesInOrderOfDeadlinesAtTheirTimes) {
    ManualClock clock;
    std::vector<std::pair<int, Clock::Duration>> fired;
    const auto note = [&](int id) { return [&, id] { fired.emplace_back(id, clock.now()); }; };
    const auto every = clock.startTimer(200ms, Clock::Repeat::Always, note(1));
    const auto once = clock.startTimer(300ms, Clock::Repeat::Once, note(2));
    auto ended = clock.startTimer(100ms, Clock::Repeat::Once, note(3));
    ended.reset();
    clock.advance(400ms);
    EXPECT_EQ(fired,
              (std::vector<std::pair<int, Clock::Duration>>{{1, 200ms}, {2, 300ms}, {1, 400ms}}));
    EXPECT_EQ(clock.nextDeadline(), 600ms);
}

TEST(ManualClock, aTimerMayReplaceItselfInItsAction) {
    ManualClock clock;
    int fired = 0;
    std::unique_ptr<Timer> timer;
    timer = clock.startTimer(10ms, Clock::Repeat::Always, [&] {
        ++fired;
        timer = clock.startTimer(50ms, Clock::Repeat::Once, [&] { fired += 100; });
    });
    clock.advance(1s);
    EXPECT_EQ(fired, 101);
}

TEST(ManualClock, postedWorkRunsInOrderBeforeTheNextTimer) {
    ManualClock clock;
    std::vector<int> order;
    const auto timer = clock.startTimer(10ms, Clock::Repeat::Once, [&] {
        order.push_back(1);
        clock.post([&] { order.push_back(2); });
    });
    const auto later = clock.startTimer(10ms, Clock::Repeat::Once, [&] { order.push_back(3); });
    clock.post([&] { order.push_back(0); });
    clock.advance(10ms);
    EXPECT_EQ(order, (std::vector{0, 1, 2, 3}));
}
