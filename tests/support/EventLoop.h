#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <chrono>
#include <functional>
#include <thread>

namespace quorel::test {

/// Made when it is first asked for.
inline QCoreApplication& application() {
    static int argc = 1;
    static char name[] = "test";
    static char* argv[] = {name, nullptr};
    static QCoreApplication app(argc, argv);
    return app;
}

/// Runs the event loop until the condition holds; false when it does not in time.
inline bool spinUntil(const std::function<bool()>& condition,
                      std::chrono::milliseconds longest = std::chrono::seconds(20)) {
    application();
    for (const QDeadlineTimer deadline(longest); !condition();) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents();
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
    return true;
}

} // namespace quorel::test
