#include "player/SaveSchedule.h"

#include "core/ManualClock.h"

#include <gtest/gtest.h>

#include <vector>

using namespace quorel;
using namespace std::chrono_literals;

namespace {

/// A disk that takes its time: a save is done when it is told, or waited for.
struct SlowDisk {
    explicit SlowDisk(Clock::Duration takes)
        : takes_(takes) {}

    SaveSchedule::Actions actions() {
        return {.start = [this](quint64 save) { begin(save); },
                .wait =
                    [this] {
                        EXPECT_TRUE(writing_) << "waits for nothing";
                        writing_ = false;
                    }};
    }

    void begin(quint64 save) {
        EXPECT_FALSE(writing_) << "two saves at once";
        writing_ = true;
        starts.push_back(clock.now() / 1ms);
        saved = state;
        const auto end = [this, save] {
            writing_ &= starts.size() != save;
            schedule.ended(save);
        };
        if (takes_ == 0ms)
            end();
        else
            ends_.push_back(clock.startTimer(takes_, Clock::Repeat::Once, end));
    }

    void changeAt(Clock::Duration time) {
        clock.advanceTo(time);
        ++state;
        schedule.changed();
    }

    ManualClock clock;
    int state = 0;
    int saved = 0;
    std::vector<qint64> starts; ///< of saves, in milliseconds
    SaveSchedule schedule{clock, actions()};

  private:
    Clock::Duration takes_;
    bool writing_ = false;
    std::vector<std::unique_ptr<Timer>> ends_;
};

} // namespace

TEST(SaveSchedule, savesSoonAfterABurstAndNeverTwiceAtOnce) {
    struct Case {
        const char* what;
        std::vector<int> changes; ///< milliseconds
        Clock::Duration saving;
        std::vector<qint64> starts;
    };
    const Case kCases[] = {
        {"nothing changed", {}, 0ms, {}},
        {"one change", {100}, 0ms, {600}},
        {"ten changes within 0.3 s", {0, 30, 60, 90, 120, 150, 180, 210, 240, 300}, 0ms, {800}},
        {"changes without a pause", {0, 400, 800, 1200, 1600, 1999}, 0ms, {2000}},
        {"the bound counts anew after a save",
         {0, 600, 1000, 1400, 1800, 2200, 2590},
         0ms,
         {500, 2600}},
        {"a change just before it is due", {0, 499}, 0ms, {999}},
        {"due while saving", {0, 600, 700}, 3s, {500, 3500}},
        {"changed all the while of a long saving",
         {0, 600, 1000, 1400, 1800, 2200, 2600, 3400},
         3s,
         {500, 3500}},
        {"changed just before a saving ends", {0, 600, 650}, 200ms, {500, 1150}},
    };
    for (const Case& c : kCases) {
        SlowDisk disk(c.saving);
        for (const int time : c.changes)
            disk.changeAt(std::chrono::milliseconds(time));
        disk.clock.advance(20s);
        EXPECT_EQ(disk.starts, c.starts) << c.what;
        EXPECT_EQ(disk.saved, disk.state) << c.what;
        EXPECT_FALSE(disk.clock.nextDeadline()) << c.what;
    }
}

TEST(SaveSchedule, flushSavesWhatIsNotSaved) {
    struct Case {
        const char* what;
        std::vector<int> changes;
        int flushAt;
        std::vector<qint64> starts;
    };
    const Case kCases[] = {
        {"nothing to save", {}, 10, {}},
        {"a change waits", {0}, 10, {10}},
        {"a save is under way", {0}, 510, {500}},
        {"a save is under way and a change waits", {0, 505}, 510, {500, 510}},
        {"all is saved", {0}, 3000, {500}},
    };
    for (const Case& c : kCases) {
        SlowDisk disk(1s);
        for (const int time : c.changes)
            disk.changeAt(std::chrono::milliseconds(time));
        disk.clock.advanceTo(std::chrono::milliseconds(c.flushAt));
        disk.schedule.flush();
        EXPECT_EQ(disk.starts, c.starts) << c.what;
        EXPECT_EQ(disk.saved, disk.state) << c.what;
        // The end of a save that was waited for comes even so, and is not taken for the next one's.
        disk.changeAt(disk.clock.now());
        disk.changeAt(disk.clock.now() + 501ms);
        disk.clock.advance(20s);
        EXPECT_EQ(disk.starts.size(), c.starts.size() + 2) << c.what;
        EXPECT_EQ(disk.saved, disk.state) << c.what;
    }
}
