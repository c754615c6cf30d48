#pragma once

#include "audio/decode/SourceStream.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <variant>
#include <vector>

namespace quorel {

/// Decodes what is to be heard, ahead of time. Takes orders from the main thread and never makes it
/// wait; owns the files while they are read. On its own thread, or, for offline rendering, inside
/// pump().
class SourceWorker {
  public:
    enum class Mode { Threaded, Pumped };

    /// Called on the worker's thread (in pump() when pumped); each concerns the stream of its
    /// epoch.
    struct Events {
        /// There is enough in the ring to start with.
        std::function<void(uint64_t epoch)> primed;
        /// A file gave out early: segment number (0 is the first) and the frames it really had.
        std::function<void(uint64_t epoch, int segment, int64_t frames)> shortened;
        /// An appended segment could not be taken back without a trace any more.
        std::function<void(uint64_t epoch)> dropFailed;
    };

    SourceWorker(Mode mode, Events events);
    ~SourceWorker();

    /// Main thread: fills `sink` from `first` on; whatever was being filled is left.
    void begin(std::shared_ptr<rt::Source> sink, const rt::Format& device, SourceSegment first);

    /// Main thread: lets `next` follow without a gap. False when the stream is not the current one
    /// or its end has been settled, which happens once less than kLateSeconds are left to play.
    bool append(uint64_t epoch, SourceSegment next);

    /// Main thread: takes the appended segment back.
    void dropAppended(uint64_t epoch);

    /// Main thread: leaves whatever is being filled and lets go of its files.
    void end();

    /// Pumped mode: carries out the orders and fills the ring as far as it goes.
    void pump();

    /// A track can be queued as long as this much of the present one is in the ring.
    static constexpr double kLateSeconds = 0.3;

  private:
    struct Begin {
        std::shared_ptr<rt::Source> sink;
        rt::Format device;
        SourceSegment first;
    };
    struct Append {
        SourceSegment next;
    };
    struct Drop {};
    struct End {};
    using Order = std::variant<Begin, Append, Drop, End>;

    void order(Order order);
    void cancelReading();
    void run();
    std::vector<Order> takeOrders();
    void carryOut(Order& order);
    /// Fills the ring and says how long there will be nothing to do.
    std::chrono::nanoseconds work();
    bool settleEnd();
    void tellWhenPrimed();

    const Mode mode_;
    const Events events_;

    std::mutex mutex_; // guards what follows; never held while reading a file
    std::condition_variable wake_;
    std::vector<Order> orders_;
    std::shared_ptr<AudioFile> reading_; // so that a read can be cancelled
    uint64_t epoch_ = 0;                 // of the newest stream ordered
    bool accepting_ = false;             // its end is not settled
    bool quit_ = false;

    // The worker's own.
    std::unique_ptr<SourceStream> stream_;
    bool primedTold_ = false;
    rt::Format device_;
    std::thread thread_;
};

} // namespace quorel
