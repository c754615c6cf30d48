#include "tools/quorel-cli/FileOpener.h"

#include <pthread.h>

#include <utility>

namespace quorel::cli {

FileOpener::FileOpener(Clock& clock)
    : clock_(clock)
    , thread_([this] { run(); }) {}

FileOpener::~FileOpener() {
    {
        const std::lock_guard lock(mutex_);
        quit_ = true;
    }
    wake_.notify_one();
    thread_.join();
}

void FileOpener::open(const std::string& path, Done done) {
    {
        const std::lock_guard lock(mutex_);
        request_ = {path, std::move(done)};
    }
    wake_.notify_one();
}

void FileOpener::run() {
    pthread_setname_np(pthread_self(), "quorel-opener");
    std::unique_lock lock(mutex_);
    for (;;) {
        wake_.wait(lock, [this] { return quit_ || request_; });
        if (quit_) {
            return;
        }
        const Request request = *std::exchange(request_, std::nullopt);
        lock.unlock();
        const OpenedTrack opened = openTrack(request.path);
        clock_.post([opened, done = request.done, alive = std::weak_ptr(alive_)] {
            if (alive.lock()) {
                done(opened);
            }
        });
        lock.lock();
    }
}

} // namespace quorel::cli
