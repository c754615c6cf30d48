#pragma once

#include "audio/AudioEngine.h"
#include "audio/output/PulseOutput.h"
#include "core/QtClock.h"

#include <QCoreApplication>
#include <chrono>
#include <functional>
#include <thread>

namespace quorel::test {

/// The engine as the program runs it: real time, a real sound server, the source worker's thread.
class LivePlayer {
  public:
    explicit LivePlayer(const QString& uid = {}) {
        engine.onTrackEnded = [this] { ++ended; };
        engine.openOutput(uid);
    }

    /// Runs the event loop for a while, and notes how long it was kept from turning.
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
            if (turn > end) {
                return false;
            }
            QCoreApplication::processEvents();
            longestTurn = std::max(longestTurn, Steady::now() - turn);
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return true;
    }

  private:
    static QCoreApplication& application() {
        static int argc = 1;
        static char name[] = "test";
        static char* argv[] = {name, nullptr};
        static QCoreApplication app(argc, argv);
        return app;
    }
    QCoreApplication& application_ = application();

  public:
    QtClock clock;
    AudioEngine engine{clock, std::make_unique<PulseOutput>(clock), SourceWorker::Mode::Threaded};
    int ended = 0;
    std::chrono::steady_clock::duration longestTurn{0};
};

} // namespace quorel::test
