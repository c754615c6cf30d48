// quorel-cli play: plays files aloud, with a progress line and keys on a terminal.
#include "audio/output/NullOutput.h"
#include "audio/output/PulseOutput.h"
#include "core/QtClock.h"
#include "tools/quorel-cli/CommandLine.h"
#include "tools/quorel-cli/PlaySession.h"
#include "tools/quorel-cli/Signals.h"
#include "tools/quorel-cli/Terminal.h"

#include <unistd.h>

#include <QCoreApplication>
#include <QSocketNotifier>
#include <csignal>

namespace quorel::cli {

namespace {

using namespace std::chrono_literals;

constexpr double kSeekSeconds = 5;
constexpr auto kLookInterval = 1s;
constexpr Option kOptions[] = {
    {"--output", "null|default|UID", "where to play: without sound, the system's device, or one"},
};

void act(PlaySession& session, Key key) {
    switch (key) {
    case Key::Pause:
        session.togglePause();
        break;
    case Key::Next:
        session.next();
        break;
    case Key::Previous:
        session.previous();
        break;
    case Key::Forward:
        session.seekBy(kSeekSeconds);
        break;
    case Key::Back:
        session.seekBy(-kSeekSeconds);
        break;
    case Key::Quit:
        QCoreApplication::quit();
        break;
    }
}

/// Keys and signals, for as long as it lives.
class Controls {
  public:
    Controls(Clock& clock, PlaySession& session)
        : clock_(clock)
        , session_(session)
        , signalNotifier_(signals_.descriptor(), QSocketNotifier::Read) {
        QObject::connect(&signalNotifier_, &QSocketNotifier::activated, [this] { onSignal(); });
        if (Terminal::isPresent()) {
            terminal_.emplace();
            keyNotifier_.emplace(STDIN_FILENO, QSocketNotifier::Read);
            QObject::connect(&*keyNotifier_, &QSocketNotifier::activated, [this] { onInput(); });
            followForeground();
        }
    }

  private:
    void onSignal() {
        while (const auto number = signals_.take()) {
            if (*number != SIGCONT) {
                QCoreApplication::quit();
            } else if (terminal_) {
                followForeground();
            }
        }
    }

    // A shell need not tell a program that it comes to the foreground.
    void followForeground() {
        const bool foreground = Terminal::isForeground();
        keyNotifier_->setEnabled(foreground);
        background_.reset();
        if (foreground) {
            terminal_->enter();
        } else {
            background_ = clock_.startTimer(kLookInterval, Clock::Repeat::Once,
                                            [this] { followForeground(); });
        }
    }

    void onInput() {
        if (!Terminal::isForeground()) {
            followForeground();
            return;
        }
        const auto keys = terminal_->takeKeys();
        if (!keys) {
            keyNotifier_->setEnabled(false);
            return;
        }
        for (const Key key : *keys) {
            act(session_, key);
        }
    }

    Clock& clock_;
    PlaySession& session_;
    Signals signals_{SIGINT, SIGTERM, SIGHUP, SIGCONT};
    QSocketNotifier signalNotifier_;
    std::optional<Terminal> terminal_;
    std::optional<QSocketNotifier> keyNotifier_;
    std::unique_ptr<Timer> background_;
};

int run(const Arguments& arguments) {
    std::signal(SIGPIPE, SIG_IGN); // who stops reading what is printed may still listen
    int count = 1;
    char name[] = "quorel-cli";
    char* words[] = {name, nullptr};
    const QCoreApplication application(count, words);

    QtClock clock;
    const std::string wanted = arguments.value("--output", "default");
    std::unique_ptr<Output> output;
    if (wanted == "null") {
        output = std::make_unique<NullOutput>(clock);
    } else {
        output = std::make_unique<PulseOutput>(clock);
    }
    PlayView view;
    PlaySession session(clock, std::move(output), arguments.operands, view,
                        [](bool played) { QCoreApplication::exit(played ? kSuccess : kFailure); });
    const Controls controls(clock, session);
    // From inside the loop: there would be nothing to leave before it.
    clock.post([&] {
        session.start(wanted == "null" || wanted == "default" ? QString()
                                                              : QString::fromStdString(wanted));
    });
    return QCoreApplication::exec();
}

} // namespace

const Command kPlayCommand = {
    "play",
    "FILES...",
    "Plays files in order, without gaps where they allow it.",
    "Keys on a terminal: space pauses and resumes, n and p go to the next and the previous track,\n"
    "the left and right arrows seek by 5 s, q quits. Files that cannot be played are passed over;\n"
    "the status is 1 if none can.",
    kOptions,
    run};

} // namespace quorel::cli
