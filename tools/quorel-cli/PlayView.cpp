#include "tools/quorel-cli/PlayView.h"

#include "model/TimeText.h"
#include "tools/quorel-cli/Console.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>

namespace quorel::cli {

namespace {

// ECMA-48, and DEC's switch for wrapping: without it a long line needs no measuring.
constexpr std::string_view kClearLine = "\r\x1b[2K";
constexpr std::string_view kNoWrap = "\x1b[?7l";
constexpr std::string_view kWrap = "\x1b[?7h";

} // namespace

PlayView::PlayView()
    : isTerminal_(isatty(STDOUT_FILENO) == 1) {}

PlayView::~PlayView() {
    if (!shown_.empty()) {
        printLine({});
    }
}

void PlayView::trackStarted(const QString& title, double duration) {
    title_ = title;
    if (!isTerminal_) {
        printLine((title + QStringLiteral(" (") + formatTime(duration) + u')').toStdString());
        flushOutput();
    }
}

void PlayView::show(const Progress& progress) {
    if (!isTerminal_) {
        return;
    }
    const QString times =
        formatTime(progress.position) + QStringLiteral(" / ") + formatTime(progress.duration);
    std::string line = progress.state;
    line.append(9 - std::min<std::size_t>(line.size(), 8), ' ');
    line += times.toStdString() + "  " + title_.toStdString();
    if (line != shown_) {
        put(line);
    }
}

void PlayView::problem(const QString& text) {
    const std::string line = shown_;
    if (!line.empty()) {
        put({});
    }
    printProblem(text);
    if (!line.empty()) {
        put(line);
    }
}

void PlayView::put(const std::string& line) {
    std::string bytes(kClearLine);
    if (!line.empty()) {
        bytes.append(kNoWrap).append(line).append(kWrap);
    }
    std::fwrite(bytes.data(), 1, bytes.size(), stdout);
    flushOutput();
    shown_ = line;
}

} // namespace quorel::cli
