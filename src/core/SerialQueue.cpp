#include "core/SerialQueue.h"

#include <pthread.h>

#include <string>

namespace quorel {

SerialQueue::SerialQueue(Mode mode, Clock& clock, const char* name)
    : mode_(mode)
    , clock_(clock) {
    if (mode_ == Mode::Threaded)
        thread_ = std::thread([this, threadName = std::string(name)] {
            pthread_setname_np(pthread_self(), threadName.c_str());
            run();
        });
}

SerialQueue::~SerialQueue() {
    // The tasks go at the end of this, on the main thread, as what they hold may be its.
    {
        const std::lock_guard lock(mutex_);
        quit_ = true;
        if (underWay_)
            underWay_->request_stop();
    }
    wake_.notify_one();
    if (thread_.joinable())
        thread_.join();
}

void SerialQueue::add(Priority priority, std::shared_ptr<Task> task) {
    {
        const std::lock_guard lock(mutex_);
        (priority == Priority::Urgent ? urgent_ : ordinary_).push_back(std::move(task));
    }
    wake_.notify_one();
}

std::shared_ptr<SerialQueue::Task> SerialQueue::take() {
    auto& tasks = urgent_.empty() ? ordinary_ : urgent_;
    if (tasks.empty())
        return nullptr;
    auto task = std::move(tasks.front());
    tasks.pop_front();
    underWay_ = task->stop;
    return task;
}

// Main gets every task back, those not begun too: what `done` holds has to be let go of there.
void SerialQueue::carryOut(std::shared_ptr<Task> task) {
    const bool isBegun = !task->stop.stop_requested();
    if (isBegun)
        task->work();
    clock_.post([task = std::move(task), isBegun, alive = std::weak_ptr(alive_)] {
        if (isBegun && !alive.expired() && !task->stop.stop_requested())
            task->finish();
    });
    {
        const std::lock_guard lock(mutex_);
        underWay_.reset();
    }
    idle_.notify_one();
}

void SerialQueue::run() {
    std::unique_lock lock(mutex_);
    for (;;) {
        wake_.wait(lock, [this] { return quit_ || !urgent_.empty() || !ordinary_.empty(); });
        if (quit_)
            return;
        auto task = take();
        lock.unlock();
        carryOut(std::move(task));
        lock.lock();
    }
}

void SerialQueue::drain() {
    if (mode_ == Mode::Pumped) {
        while (pump()) {
        }
        return;
    }
    std::unique_lock lock(mutex_);
    idle_.wait(lock, [this] { return !underWay_ && urgent_.empty() && ordinary_.empty(); });
}

bool SerialQueue::pump() {
    std::unique_lock lock(mutex_);
    auto task = take();
    lock.unlock();
    if (!task)
        return false;
    carryOut(std::move(task));
    return true;
}

} // namespace quorel
