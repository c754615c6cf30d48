#include "core/SerialQueue.h"

#include "core/ManualClock.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <future>
#include <string>
#include <vector>

using namespace quorel;
using Mode = SerialQueue::Mode;
using Priority = SerialQueue::Priority;

namespace {

class SerialQueueIn : public testing::TestWithParam<Mode> {};

INSTANTIATE_TEST_SUITE_P(, SerialQueueIn, testing::Values(Mode::Threaded, Mode::Pumped),
                         [](const auto& mode) {
                             return mode.param == Mode::Threaded ? "Threaded" : "Pumped";
                         });

/// Something that notes the thread on which it is let go of.
std::shared_ptr<void> tracedBy(std::thread::id& thread) {
    return {nullptr, [&thread](void*) { thread = std::this_thread::get_id(); }};
}

} // namespace

TEST_P(SerialQueueIn, worksInOrderAndFinishesOnTheMainThread) {
    ManualClock clock;
    SerialQueue queue(GetParam(), clock, "test");
    const auto main = std::this_thread::get_id();
    std::vector<int> worked; // by the worker alone until it is drained
    std::vector<int> finished;
    for (int i = 0; i < 500; ++i)
        queue.post(
            Priority::Ordinary,
            [&worked, i, main, mode = GetParam()](const std::stop_token&) {
                EXPECT_EQ(std::this_thread::get_id() == main, mode == Mode::Pumped);
                worked.push_back(i);
                return std::make_unique<int>(i);
            },
            [&finished, main](std::unique_ptr<int> result) {
                EXPECT_EQ(std::this_thread::get_id(), main);
                finished.push_back(*result);
            });
    queue.drain();
    EXPECT_TRUE(finished.empty()) << "nothing comes before the main loop turns";
    EXPECT_EQ(worked.size(), 500u);
    clock.runPosted();
    EXPECT_TRUE(std::ranges::is_sorted(worked));
    EXPECT_EQ(finished, worked);
}

TEST(SerialQueue, letsUrgentTasksJumpAheadOfWaitingOnes) {
    ManualClock clock;
    SerialQueue queue(Mode::Pumped, clock, "test");
    std::string worked;
    std::string finished;
    for (const char letter : {'a', 'b', 'X', 'c', 'Y', 'd'}) {
        queue.post(
            letter < 'a' ? Priority::Urgent : Priority::Ordinary,
            [&worked, letter](const std::stop_token&) { worked += letter; },
            [&finished, letter] { finished += letter; });
        EXPECT_TRUE(letter != 'a' || queue.pump());
    }
    queue.drain();
    EXPECT_FALSE(queue.pump());
    clock.runPosted();
    EXPECT_EQ(worked, "aXYbcd");
    EXPECT_EQ(finished, worked);
}

TEST(SerialQueue, dropsTheResultOfATaskWhereverItIsStopped) {
    enum class When { Never, Waiting, UnderWay, Done, QueueGone };
    const std::pair<When, std::string> kCases[] = {
        {When::Never, "begun finished"}, {When::Waiting, ""},        {When::UnderWay, "begun seen"},
        {When::Done, "begun"},           {When::QueueGone, "begun"},
    };
    for (const auto& [stopped, expected] : kCases) {
        const When when = stopped;
        ManualClock clock;
        auto queue = std::make_unique<SerialQueue>(Mode::Pumped, clock, "test");
        std::string happened;
        std::stop_source stop(std::nostopstate);
        stop = queue->post(
            Priority::Ordinary,
            [&](const std::stop_token& token) {
                if (when == When::UnderWay)
                    stop.request_stop();
                happened = token.stop_requested() ? "begun seen" : "begun";
            },
            [&] { happened += " finished"; });
        if (when == When::Waiting)
            stop.request_stop();
        queue->drain();
        if (when == When::Done)
            stop.request_stop();
        if (when == When::QueueGone)
            queue.reset();
        clock.runPosted();
        EXPECT_EQ(happened, expected) << int(when);
    }
}

TEST(SerialQueue, endsSoonAndLetsGoOnTheMainThread) {
    ManualClock clock;
    auto queue = std::make_unique<SerialQueue>(Mode::Threaded, clock, "test");
    std::thread::id underWay;
    std::thread::id waiting;
    std::promise<void> started;
    queue->post(
        Priority::Ordinary,
        [&](const std::stop_token& token) {
            started.set_value();
            while (!token.stop_requested())
                std::this_thread::yield();
        },
        [trace = tracedBy(underWay)] { FAIL() << "a result after the queue's end"; });
    started.get_future().wait();
    queue->post(
        Priority::Urgent, [](const std::stop_token&) { FAIL() << "begun at the end"; },
        [trace = tracedBy(waiting)] {});
    queue.reset();
    clock.runPosted();
    EXPECT_EQ(underWay, std::this_thread::get_id());
    EXPECT_EQ(waiting, std::this_thread::get_id());
}
