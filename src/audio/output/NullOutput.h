#pragma once

#include "audio/output/OutputEvents.h"

#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

namespace quorel {

/// An output without sound: a thread that takes 10 ms of stereo from the client every 10 ms, as a
/// device would. The place of a sound card where there is none.
class NullOutput final : public Output {
  public:
    explicit NullOutput(Clock& clock, int sampleRate = 48000); ///< Hz, at least 100
    ~NullOutput() override;

    void attach(RenderClient& client, OutputListener& listener) override;
    void open(const QString& uid) override; ///< every UID is as good as another
    void start(uint64_t stream) override;
    void stop() override;
    OutputTiming timing() const override { return events_.timing(); }
    QList<OutputDevice> devices() const override { return {}; }

  private:
    using SteadyClock = std::chrono::steady_clock;

    struct Request {
        uint64_t stream = 0; // counts the open() calls, so that it is the stream's number as well
        bool running = false;
        uint64_t changes = 0;
        bool ending = false;
    };
    struct Progress {
        uint64_t stream = 0;
        int64_t framesWritten = 0;
        std::chrono::nanoseconds latency{0};
        bool running = false;
        // When the first frame since the start was or will be heard, and that frame.
        SteadyClock::time_point origin{};
        int64_t originFrame = 0;
    };

    void change(const std::function<void(Request&)>& edit);
    void run();
    void follow(const Request& request, Progress& progress);
    void renderDue(Progress& progress);
    void publish(Progress& progress);
    SteadyClock::time_point timeOf(const Progress& progress, int64_t frame) const;

    const rt::Format format_;
    const int burstFrames_;
    mutable OutputEvents events_;
    RenderClient* client_ = nullptr;
    std::vector<float> buffer_;

    std::mutex mutex_; // guards request_
    std::condition_variable changed_;
    Request request_;
    std::thread thread_;
};

} // namespace quorel
