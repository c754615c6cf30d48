#pragma once

#include "audio/AudioEngine.h"
#include "audio/output/PulseOutput.h"
#include "core/QtClock.h"
#include "support/EventLoop.h"
#include "support/ProcessorWait.h"

namespace quorel::test {

/// A call or turn of the event loop that takes as long has waited for somebody. Shorter ones are
/// left to a busy machine: what stands still here does so for seconds.
constexpr std::chrono::milliseconds kWaited{250};

/// The engine as the program runs it: real time, a real sound server, the source worker's thread.
class LivePlayer {
  public:
    explicit LivePlayer(const QString& uid = {}) {
        engine.onTrackEnded = [this] { ++ended; };
        engine.openOutput(uid);
    }

    /// Runs the event loop for a while.
    void run(std::chrono::milliseconds time) {
        runUntil([] { return false; }, time);
    }

    /// Runs the event loop until the condition holds; false when it does not in time.
    bool runUntil(const std::function<bool()>& condition,
                  std::chrono::milliseconds longest = std::chrono::seconds(20)) {
        using Steady = std::chrono::steady_clock;
        const auto end = Steady::now() + longest;
        while (!condition()) {
            const auto turn = Steady::now();
            if (turn > end)
                return false;
            const auto waited = waitedForProcessor();
            QCoreApplication::processEvents();
            longestTurn = std::max<std::chrono::nanoseconds>(
                longestTurn, Steady::now() - turn - (waitedForProcessor() - waited));
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return true;
    }

  private:
    QCoreApplication& application_ = application();

  public:
    QtClock clock;
    AudioEngine engine{clock, std::make_unique<PulseOutput>(clock), SourceWorker::Mode::Threaded};
    int ended = 0;
    /// The longest turn of the event loop, less what this thread waited for a busy processor.
    std::chrono::nanoseconds longestTurn{0};
};

} // namespace quorel::test
