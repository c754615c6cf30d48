#include "tools/quorel-cli/Terminal.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <string_view>

namespace quorel::cli {

namespace {

struct KeyBytes {
    std::string_view bytes;
    Key key;
};

// Arrows as terminals send them in their normal and in their application mode (ECMA-48, VT100).
constexpr auto kKeys = std::to_array<KeyBytes>({{" ", Key::Pause},
                                                {"n", Key::Next},
                                                {"p", Key::Previous},
                                                {"q", Key::Quit},
                                                {"\x1b[C", Key::Forward},
                                                {"\x1bOC", Key::Forward},
                                                {"\x1b[D", Key::Back},
                                                {"\x1bOD", Key::Back}});

/// Bytes at the front of `input` that belong together; 0 where more must come.
std::size_t sequenceLength(std::string_view input) {
    if (input.front() != '\x1b') {
        return 1;
    }
    if (input.size() < 2) {
        return 0;
    }
    if (input[1] == 'O') {
        return input.size() < 3 ? 0 : 3;
    }
    if (input[1] != '[') {
        return 1;
    }
    // A control sequence ends with its first byte from 0x40 to 0x7E.
    for (std::size_t i = 2; i < input.size(); ++i) {
        if (input[i] >= 0x40 && input[i] <= 0x7E) {
            return i + 1;
        }
    }
    return 0;
}

} // namespace

Terminal::~Terminal() {
    if (original_ && isForeground()) {
        tcsetattr(STDIN_FILENO, TCSANOW, &*original_);
    }
}

bool Terminal::isPresent() {
    return isatty(STDIN_FILENO) == 1;
}

bool Terminal::isForeground() {
    return tcgetpgrp(STDIN_FILENO) == getpgrp();
}

void Terminal::enter() {
    termios settings{};
    if (tcgetattr(STDIN_FILENO, &settings) != 0) {
        return;
    }
    if (!original_) {
        original_ = settings;
    }
    settings.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
    settings.c_cc[VMIN] = 1;
    settings.c_cc[VTIME] = 0;
    tcsetattr(STDIN_FILENO, TCSANOW, &settings);
}

std::optional<std::vector<Key>> Terminal::takeKeys() {
    std::array<char, 256> bytes{};
    const ssize_t count = ::read(STDIN_FILENO, bytes.data(), bytes.size());
    if (count <= 0) {
        return count < 0 && errno == EINTR ? std::optional(std::vector<Key>()) : std::nullopt;
    }
    pending_.append(bytes.data(), static_cast<std::size_t>(count));
    std::vector<Key> keys;
    while (!pending_.empty()) {
        const std::size_t length = sequenceLength(pending_);
        if (length == 0) {
            break;
        }
        for (const KeyBytes& known : kKeys) {
            if (known.bytes == std::string_view(pending_).substr(0, length)) {
                keys.push_back(known.key);
            }
        }
        pending_.erase(0, length);
    }
    return keys;
}

} // namespace quorel::cli
