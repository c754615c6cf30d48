// A session as a person might have it, with 100,000 tracks at hand: for how long the window does
// not react, by what was done, and what a step of an animated change of size costs.
//   window_session SECONDS FILES...
#include "SampleState.h"
#include "audio/AudioEngine.h"
#include "audio/output/PulseOutput.h"
#include "core/QtClock.h"
#include "player/PlayerController.h"
#include "storage/Persistence.h"
#include "ui/MainWindow.h"
#include "ui/theme/ApplyTheme.h"
#include "ui/theme/Scale.h"
#include "update/UpdateChecker.h"

#include <fcntl.h>
#include <unistd.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QResizeEvent>
#include <QScrollBar>
#include <QTemporaryDir>
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <optional>

using namespace quorel;
using namespace std::chrono_literals;
using Millis = std::chrono::duration<double, std::milli>;

namespace {

constexpr auto kBeat = 2ms;
constexpr auto kPerAction = 400ms;

/// Tells for how long the main loop stood still: of a timer that should fire every 2 ms, the
/// longest time that it did not, less what the thread waited for a processor that others had.
class Watchdog {
  public:
    explicit Watchdog(Clock& clock)
        : clock_(clock)
        , beat_(clock.startTimer(kBeat, Clock::Repeat::Always, [this] { beat(); })) {}

    /// The longest since it was last asked.
    Millis takeLongest() { return std::exchange(longest_, Millis(0)); }

  private:
    void beat() {
        const Clock::Duration now = clock_.now();
        const auto waited = waitedForProcessor();
        longest_ = std::max(longest_, Millis(now - last_ - (waited - waitedAtLast_)));
        last_ = now;
        waitedAtLast_ = waited;
    }

    std::chrono::nanoseconds waitedForProcessor() const {
        std::array<char, 100> text{};
        if (::pread(statistics_, text.data(), text.size() - 1, 0) <= 0)
            return 0ns;
        char* end = nullptr;
        std::strtoll(text.data(), &end, 10);
        return std::chrono::nanoseconds(std::strtoll(end, nullptr, 10));
    }

    Clock& clock_;
    const int statistics_ = ::open("/proc/thread-self/schedstat", O_RDONLY | O_CLOEXEC);
    Clock::Duration last_ = clock_.now();
    std::chrono::nanoseconds waitedAtLast_ = waitedForProcessor();
    Millis longest_{0};
    std::unique_ptr<Timer> beat_;
};

/// The processor time of the main thread between two sizes of the window while it is animated: a
/// step with its picture. The layout at the end, which takes on the new scale, is no step.
class ScaleSteps : public QObject {
  public:
    void begin() {
        from_ = uiScale();
        last_.reset();
    }
    void print() {
        if (steps_.empty())
            return;
        std::sort(steps_.begin(), steps_.end());
        std::printf("%zu steps of changes of size: median %.1f ms, worst %.1f ms\n", steps_.size(),
                    steps_[steps_.size() / 2], steps_.back());
    }

  protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() != QEvent::Resize)
            return false;
        if (from_ != uiScale()) {
            from_.reset();
            return false;
        }
        timespec time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        const double now = double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
        if (last_)
            steps_.push_back(now - *last_);
        last_ = now;
        return false;
    }

  private:
    std::optional<double> from_; ///< the scale before an animation that runs
    std::optional<double> last_;
    std::vector<double> steps_;
};

struct Action {
    const char* name;
    std::function<void()> run;
    Millis longest{0};
};

class Session {
  public:
    Session(PlayerController& player, MainWindow& window, Clock& clock)
        : player_(player)
        , window_(window)
        , clock_(clock)
        , library_(player.activePlaylistID())
        , watchdog_(clock) {
        window.installEventFilter(&steps_);
    }

    void run(std::chrono::seconds length) {
        end_ = clock_.now() + length;
        next_ = clock_.startTimer(kPerAction, Clock::Repeat::Always, [this] { step(); });
        watchdog_.takeLongest(); // the start
    }

  private:
    void step() {
        if (done_ > 0) {
            Millis& longest = actions_[(done_ - 1) % actions_.size()].longest;
            longest = std::max(longest, watchdog_.takeLongest());
        }
        if (clock_.now() >= end_) {
            print();
            QCoreApplication::quit();
            return;
        }
        actions_[done_ % actions_.size()].run();
        ++done_;
    }

    void print() {
        const auto worst = std::max_element(
            actions_.begin(), actions_.end(),
            [](const Action& a, const Action& b) { return a.longest < b.longest; });
        for (const Action& action : actions_)
            std::printf("%-24s %6.1f ms\n", action.name, action.longest.count());
        std::printf("%zu actions; the longest the window did not react: %.1f ms (%s)\n", done_,
                    worst->longest.count(), worst->name);
        steps_.print();
    }

    void scale(double to) {
        steps_.begin();
        player_.setUIScale(to);
    }
    void scroll(double share) {
        for (QAbstractItemView* view : window_.findChildren<QAbstractItemView*>()) {
            QScrollBar* const bar = view->verticalScrollBar();
            bar->setValue(int(share * bar->maximum()));
        }
    }
    void showFiles() {
        for (qsizetype i = 0; i < player_.playlistCount(); ++i)
            if (player_.playlistAt(i).tracks.size() < 10)
                player_.setActivePlaylist(player_.playlistAt(i).id);
    }

    PlayerController& player_;
    MainWindow& window_;
    Clock& clock_;
    const QUuid library_;
    Watchdog watchdog_;
    ScaleSteps steps_;
    Clock::Duration end_{0};
    std::unique_ptr<Timer> next_;
    std::size_t done_ = 0;
    std::vector<Action> actions_ = {
        {"next track", [this] { player_.nextTrack(); }},
        {"next visualisation", [this] { player_.cycleVisualization(); }},
        {"seek", [this] { player_.seek(10); }},
        {"pause", [this] { player_.pause(); }},
        {"resume", [this] { player_.playPause(); }},
        {"equaliser preset", [this] { player_.applyEQPreset(QStringLiteral("rock")); }},
        {"show 100,000 tracks", [this] { player_.setActivePlaylist(library_); }},
        {"scroll", [this] { scroll(0.5); }},
        {"enter the search", [this] { player_.prepareSearch(); }},
        {"type into the search", [this] { player_.setSearchText(QStringLiteral("1")); }},
        {"type another letter", [this] { player_.setSearchText(QStringLiteral("12")); }},
        {"clear the search", [this] { player_.setSearchText({}); }},
        {"select all", [this] { player_.selectAll(); }},
        {"remove the selected", [this] { player_.removeSelected(); }},
        {"undo that", [this] { player_.undoRemove(); }},
        {"smaller", [this] { scale(0.7); }},
        {"larger", [this] { scale(1.2); }},
        {"as it was", [this] { scale(1); }},
        {"resize", [this] { window_.resize(900, 700); }},
        {"resize back", [this] { window_.resize(560, 600); }},
        {"hide the playlist", [this] { player_.togglePlaylistVisible(); }},
        {"show the playlist", [this] { player_.togglePlaylistVisible(); }},
        {"the files' playlist", [this] { showFiles(); }},
        {"previous track", [this] { player_.prevTrack(); }},
    };
};

/// All of the tracks in the shown playlist.
PersistedState library(int tracks) {
    PersistedState state = bench::sampleState(tracks);
    for (qsizetype i = 1; i < state.playlists.size(); ++i)
        state.playlists[0].tracks += state.playlists[i].tracks;
    state.playlists.resize(1);
    state.activePlaylistID = state.playlists[0].id;
    return state;
}

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    const int seconds = argc > 2 ? std::atoi(argv[1]) : 0;
    if (seconds <= 0) {
        std::fputs("usage: window_session SECONDS FILES...\n", stderr);
        return 2;
    }
    applyTheme(application);
    const QTemporaryDir folder;
    const QString stateFile = folder.filePath(QStringLiteral("state.json"));
    if (!Persistence(stateFile).save(library(100'000)))
        return EXIT_FAILURE;
    QtClock clock;
    PlayerController player(
        {.clock = clock,
         .engine = std::make_unique<AudioEngine>(clock, std::make_unique<PulseOutput>(clock),
                                                 SourceWorker::Mode::Threaded),
         .stateFile = stateFile});
    UpdateChecker updates(clock, {});
    MainWindow window(player, updates, clock);
    Session session(player, window, clock);
    window.show();
    player.start(false);
    QStringList files;
    for (int i = 2; i < argc; ++i)
        files += QString::fromLocal8Bit(argv[i]);
    if (const auto made = player.newPlaylist(files))
        player.play(player.findPlaylist(made)->tracks[0].id, *made);
    session.run(std::chrono::seconds(seconds));
    return QApplication::exec();
}
