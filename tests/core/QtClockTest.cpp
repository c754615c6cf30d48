#include "core/QtClock.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <string>

using namespace quorel;
using namespace std::chrono_literals;

TEST(QtClock, whatIsPostedKeepsItsOrderWhereALoopTurnsInside) {
    int count = 1;
    char name[] = "test";
    char* arguments[] = {name, nullptr};
    const QCoreApplication application(count, arguments);
    QtClock clock;
    std::string order;
    QEventLoop inner; // as that of a message box
    clock.post([&] {
        order += '(';
        const auto giveUp = clock.startTimer(2s, Clock::Repeat::Once, [&inner] { inner.quit(); });
        inner.exec();
        order += ')';
    });
    clock.post([&order] { order += 'a'; });
    clock.post([&] {
        order += 'b';
        clock.post([&] {
            order += 'c';
            inner.quit();
        });
    });
    while (order.size() < 5)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    EXPECT_EQ(order, "(abc)");
}
