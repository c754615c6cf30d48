#include "audio/decode/SourceWorker.h"

#include <pthread.h>

#include <algorithm>
#include <utility>

namespace quorel {

using namespace std::chrono_literals;

SourceWorker::SourceWorker(Mode mode, Events events)
    : mode_(mode)
    , events_(std::move(events)) {
    if (mode_ == Mode::Threaded) {
        thread_ = std::thread([this] { run(); });
    }
}

SourceWorker::~SourceWorker() {
    {
        const std::lock_guard lock(mutex_);
        quit_ = true;
        cancelReading();
    }
    wake_.notify_one();
    if (thread_.joinable()) {
        thread_.join();
    }
}

void SourceWorker::cancelReading() {
    if (reading_) {
        reading_->cancel();
    }
}

void SourceWorker::begin(std::shared_ptr<rt::Source> sink, const rt::Format& device,
                         SourceSegment first) {
    const std::lock_guard lock(mutex_);
    cancelReading();
    orders_.clear(); // the newest stream is the only one wanted
    epoch_ = sink->epoch;
    accepting_ = true;
    orders_.emplace_back(Begin{std::move(sink), device, std::move(first)});
    wake_.notify_one();
}

bool SourceWorker::append(uint64_t epoch, SourceSegment next) {
    const std::lock_guard lock(mutex_);
    if (!accepting_ || epoch != epoch_) {
        return false;
    }
    orders_.emplace_back(Append{std::move(next)});
    wake_.notify_one();
    return true;
}

void SourceWorker::dropAppended(uint64_t epoch) {
    const std::lock_guard lock(mutex_);
    if (epoch == epoch_) {
        orders_.emplace_back(Drop{});
        wake_.notify_one();
    }
}

void SourceWorker::end() {
    const std::lock_guard lock(mutex_);
    cancelReading();
    orders_.clear();
    accepting_ = false;
    epoch_ = 0;
    orders_.emplace_back(End{});
    wake_.notify_one();
}

void SourceWorker::run() {
    pthread_setname_np(pthread_self(), "quorel-source");
    for (;;) {
        for (Order& order : takeOrders()) {
            carryOut(order);
        }
        const auto idle = work();
        std::unique_lock lock(mutex_);
        const auto wanted = [this] { return quit_ || !orders_.empty(); };
        if (stream_ && !stream_->isFinished()) {
            wake_.wait_for(lock, idle, wanted);
        } else {
            wake_.wait(lock, wanted);
        }
        if (quit_) {
            return;
        }
    }
}

void SourceWorker::pump() {
    for (Order& order : takeOrders()) {
        carryOut(order);
    }
    work();
}

std::vector<SourceWorker::Order> SourceWorker::takeOrders() {
    std::shared_ptr<AudioFile> done; // closed after the lock, if this is its last use
    const std::lock_guard lock(mutex_);
    if (!orders_.empty() && reading_) {
        reading_->resume(); // what it was cancelled for is about to be carried out
        done.swap(reading_);
    }
    return std::exchange(orders_, {});
}

void SourceWorker::carryOut(Order& order) {
    if (auto* begin = std::get_if<Begin>(&order)) {
        const uint64_t epoch = begin->sink->epoch;
        device_ = begin->device;
        primedTold_ = false;
        stream_ = std::make_unique<SourceStream>(std::move(begin->sink), begin->device,
                                                 std::move(begin->first),
                                                 [this, epoch](int segment, int64_t frames) {
                                                     events_.shortened(epoch, segment, frames);
                                                 });
    } else if (std::holds_alternative<End>(order)) {
        stream_.reset();
    } else if (!stream_) {
        return; // meant for a stream that a failed drop has ended
    } else if (auto* append = std::get_if<Append>(&order)) {
        stream_->append(std::move(append->next));
    } else if (!stream_->dropLast()) {
        const uint64_t epoch = stream_->epoch();
        stream_.reset();
        events_.dropFailed(epoch);
    }
}

std::chrono::nanoseconds SourceWorker::work() {
    for (;;) {
        if (!stream_ || stream_->isFinished()) {
            return 0ns;
        }
        {
            const std::lock_guard lock(mutex_);
            if (!orders_.empty() || quit_) {
                return 0ns;
            }
            reading_ = stream_->isExhausted() ? nullptr : stream_->readSegment().file;
        }
        if (!stream_->fill()) {
            break;
        }
        tellWhenPrimed();
    }
    const double level = static_cast<double>(stream_->ringLevel());
    double spare = level / device_.sampleRate;
    if (stream_->isExhausted()) {
        spare -= kLateSeconds;
        if (spare <= 0 && settleEnd()) {
            return 0ns;
        }
    } else {
        spare /= 2;
    }
    return std::max<std::chrono::nanoseconds>(
        5ms, std::chrono::nanoseconds(static_cast<int64_t>(spare * 1e9)));
}

// Under the lock, so that an append either comes before the end is settled or is refused.
bool SourceWorker::settleEnd() {
    {
        const std::lock_guard lock(mutex_);
        if (!orders_.empty()) {
            return false;
        }
        accepting_ = false;
    }
    stream_->finish();
    tellWhenPrimed();
    return true;
}

void SourceWorker::tellWhenPrimed() {
    if (!primedTold_ && stream_->isPrimed()) {
        primedTold_ = true;
        events_.primed(stream_->epoch());
    }
}

} // namespace quorel
