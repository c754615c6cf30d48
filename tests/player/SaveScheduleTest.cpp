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

    void begin(quint64 save) {
        EXPECT_FALSE(writing_) << "two saves at once";
        writing_ = true;
        starts.push_back(clock.now() / 1ms);
        saved = state;
        const auto end = [this, save, fails = isFull] {
            writing_ &= starts.size() != save;
            schedule.ended(save, !fails);
        };
        if (takes_ == 0ms)
            end();
        else
            ends_.push_back(clock.startTimer(takes_, Clock::Repeat::Once, end));
    }
    void wait() {
        EXPECT_TRUE(writing_) << "waits for nothing";
        writing_ = false;
    }

    void changeAt(Clock::Duration time) {
        clock.advanceTo(time);
        ++state;
        schedule.changed();
    }
    void changeAt(const std::vector<int>& milliseconds) {
        for (const int time : milliseconds)
            changeAt(std::chrono::milliseconds(time));
    }

    ManualClock clock;
    int state = 0;
    int saved = 0;
    bool isFull = false;        ///< what is begun now will fail
    std::vector<qint64> starts; ///< of saves, in milliseconds
    SaveSchedule schedule{clock, {[this](quint64 save) { begin(save); }, [this] { wait(); }}};

  private:
    Clock::Duration takes_;
    bool writing_ = false;
    std::vector<std::unique_ptr<Timer>> ends_;
};

} // namespace

TEST(SaveSchedule, savesSoonAfterABurstAndNeverTwiceAtOnce) {
    // Changes, how long a save takes, when saves start; all in milliseconds.
    const std::tuple<const char*, std::vector<int>, int, std::vector<qint64>> kCases[] = {
        {"nothing changed", {}, 0, {}},
        {"ten changes within 0.3 s", {0, 30, 60, 90, 120, 150, 180, 210, 240, 300}, 0, {800}},
        {"changes without a pause", {0, 400, 800, 1200, 1600, 1999}, 0, {2000}},
        {"the bound counts anew", {0, 600, 1000, 1400, 1800, 2200, 2590}, 0, {500, 2600}},
        {"a change just before it is due", {0, 499}, 0, {999}},
        {"due while saving", {0, 600, 700}, 3000, {500, 3500}},
        {"changed all the while", {0, 600, 1000, 1400, 1800, 2200, 2600, 3400}, 3000, {500, 3500}},
        {"changed just before a saving ends", {0, 600, 650}, 200, {500, 1150}},
    };
    for (const auto& [what, changes, saving, starts] : kCases) {
        SlowDisk disk{std::chrono::milliseconds(saving)};
        disk.changeAt(changes);
        disk.clock.advance(20s);
        EXPECT_EQ(disk.starts, starts) << what;
        EXPECT_EQ(disk.saved, disk.state) << what;
        EXPECT_FALSE(disk.clock.nextDeadline()) << what;
    }
}

TEST(SaveSchedule, flushSavesWhatIsNotSaved) {
    const std::tuple<const char*, std::vector<int>, int, std::vector<qint64>> kCases[] = {
        {"nothing to save", {}, 10, {}},
        {"a change waits", {0}, 10, {10}},
        {"a save is under way", {0}, 510, {500}},
        {"a save is under way and a change waits", {0, 505}, 510, {500, 510}},
        {"all is saved", {0}, 3000, {500}},
    };
    for (const auto& [what, changes, flushAt, starts] : kCases) {
        SlowDisk disk(1s);
        disk.changeAt(changes);
        disk.clock.advanceTo(std::chrono::milliseconds(flushAt));
        disk.schedule.flush();
        EXPECT_EQ(disk.starts, starts) << what;
        EXPECT_EQ(disk.saved, disk.state) << what;
        // The end of a save that was waited for comes even so, and is not taken for the next one's.
        disk.changeAt(disk.clock.now());
        disk.changeAt(disk.clock.now() + 501ms);
        disk.clock.advance(20s);
        EXPECT_EQ(disk.starts.size(), starts.size() + 2) << what;
        EXPECT_EQ(disk.saved, disk.state) << what;
    }
}

TEST(SaveSchedule, whatCouldNotBeSavedIsTriedAgainAtTheEnd) {
    SlowDisk disk(0ms);
    disk.isFull = true;
    disk.changeAt(0ms);
    disk.clock.advance(20s);
    EXPECT_EQ(disk.starts, (std::vector<qint64>{500})) << "not before something changes";
    disk.isFull = false;
    disk.schedule.flush();
    disk.schedule.flush();
    EXPECT_EQ(disk.starts, (std::vector<qint64>{500, 20'000}));
}
