#include "app/QuitSignals.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

namespace quorel {

namespace {

constexpr int kSignals[] = {SIGTERM, SIGINT, SIGHUP};

// A signal's handler may do little more than write; the event loop reads from the other end.
int ends[2] = {-1, -1};

int openPipe() {
    if (::pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0)
        std::abort();
    return ends[0];
}

void handle(int) {
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = ::write(ends[1], &byte, 1);
}

} // namespace

QuitSignals::QuitSignals(std::function<void()> quit)
    : quit_(std::move(quit))
    , notifier_(openPipe(), QSocketNotifier::Read) {
    QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [this] {
        notifier_.setEnabled(false);
        quit_();
    });
    struct sigaction action {};
    action.sa_handler = handle;
    action.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND); // a second one ends at once
    for (const int signal : kSignals)
        ::sigaction(signal, &action, nullptr);
}

QuitSignals::~QuitSignals() {
    for (const int signal : kSignals)
        std::signal(signal, SIG_DFL);
    ::close(ends[0]);
    ::close(ends[1]);
}

} // namespace quorel
