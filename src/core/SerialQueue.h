#pragma once

#include "core/Clock.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <thread>
#include <type_traits>

namespace quorel {

/// Carries out tasks one at a time and in order, for work that would make the main thread wait. On
/// its own thread, or, for tests and offline work, inside pump() and drain().
///
/// A task is work done there and, back on the main thread, something done with its result. It never
/// touches what the main thread owns while it works. Everything here is called on the main thread.
class SerialQueue {
  public:
    enum class Mode { Threaded, Pumped };
    /// Urgent tasks go before ordinary ones, and among themselves in order.
    enum class Priority { Ordinary, Urgent };

    /// The clock outlives the queue. `name` is the thread's, at most 15 characters.
    SerialQueue(Mode mode, Clock& clock, const char* name);
    /// Drops what waits, asks the task under way to stop and waits for it. No result comes after.
    ~SerialQueue();
    SerialQueue(const SerialQueue&) = delete;
    SerialQueue& operator=(const SerialQueue&) = delete;

    /// Runs `work(std::stop_token)`, then `done(result)` on the main thread; a work without a
    /// result has a `done()`. Neither may throw. Asked to stop, a task that waits is not begun, one
    /// under way sees it in its token, and the result is dropped wherever it has got to.
    template <class Work, class Done>
    std::stop_source post(Priority priority, Work work, Done done) {
        auto task = std::make_shared<TaskOf<Work, Done>>(std::move(work), std::move(done));
        std::stop_source stop = task->stop;
        add(priority, std::move(task));
        return stop;
    }

    /// Returns when nothing waits or is under way. The results come as ever, after this.
    void drain();

    /// Pumped mode: carries out the task whose turn it is; false where none waits.
    bool pump();

  private:
    struct Task {
        virtual ~Task() = default;
        virtual void work() = 0;
        virtual void finish() = 0;

        std::stop_source stop;
    };

    template <class Work, class Done>
    struct TaskOf final : Task {
        using Result = std::invoke_result_t<Work, std::stop_token>;
        static constexpr bool hasResult = !std::is_void_v<Result>;

        TaskOf(Work work, Done done)
            : work_(std::move(work))
            , done_(std::move(done)) {}

        void work() override {
            if constexpr (hasResult) {
                result_.emplace((*work_)(stop.get_token()));
            } else {
                (*work_)(stop.get_token());
            }
            work_.reset(); // what it holds may be large: better freed here than on the main thread
        }

        void finish() override {
            if constexpr (hasResult) {
                done_(std::move(*result_));
            } else {
                done_();
            }
        }

      private:
        struct Nothing {};

        std::optional<Work> work_;
        Done done_;
        std::optional<std::conditional_t<hasResult, Result, Nothing>> result_;
    };

    void add(Priority priority, std::shared_ptr<Task> task);
    void run();
    /// The next task, which is under way from then on; null where none waits.
    std::shared_ptr<Task> take();
    void carryOut(std::shared_ptr<Task> task);

    const Mode mode_;
    Clock& clock_;
    // Results that come when the queue is gone find that this is gone too.
    const std::shared_ptr<void> alive_ = std::make_shared<char>();

    std::mutex mutex_; // guards what follows; never held while a task works
    std::condition_variable wake_;
    std::condition_variable idle_;
    std::deque<std::shared_ptr<Task>> urgent_;
    std::deque<std::shared_ptr<Task>> ordinary_;
    std::optional<std::stop_source> underWay_;
    bool quit_ = false;

    std::thread thread_;
};

} // namespace quorel
