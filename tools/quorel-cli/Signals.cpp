#include "tools/quorel-cli/Signals.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>

namespace quorel::cli {

namespace {

std::array<int, 2> ends = {-1, -1};

extern "C" void noteSignal(int number) {
    const int before = errno;
    const auto byte = static_cast<unsigned char>(number);
    // A full pipe has enough to tell.
    [[maybe_unused]] const auto written = ::write(ends[1], &byte, 1);
    errno = before;
}

} // namespace

Signals::Signals(std::initializer_list<int> numbers)
    : numbers_(numbers) {
    if (::pipe2(ends.data(), O_NONBLOCK | O_CLOEXEC) != 0) {
        numbers_.clear(); // without descriptors to spare the signals keep their usual effect
    }
    for (const int number : numbers_) {
        struct sigaction action {};
        action.sa_handler = noteSignal;
        action.sa_flags = SA_RESTART | (number == SIGCONT ? 0 : static_cast<int>(SA_RESETHAND));
        ::sigaction(number, &action, nullptr);
    }
}

Signals::~Signals() {
    for (const int number : numbers_) {
        std::signal(number, SIG_DFL);
    }
    for (int& end : ends) {
        ::close(end);
        end = -1;
    }
}

std::optional<int> Signals::take() {
    unsigned char number = 0;
    if (::read(ends[0], &number, 1) != 1) {
        return std::nullopt;
    }
    return number;
}

int Signals::descriptor() const {
    return ends[0];
}

} // namespace quorel::cli
