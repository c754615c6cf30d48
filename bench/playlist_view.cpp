// What the user waits for in the playlist area with two playlists of 100,000 tracks: milliseconds
// from the act to the repainted window, and the most processor time that took. Run with
// QT_QPA_PLATFORM=offscreen.
#include "SampleState.h"
#include "core/QtClock.h"
#include "model/Path.h"
#include "player/FakeEngine.h"
#include "player/PlayerController.h"
#include "storage/Persistence.h"
#include "support/TestFolder.h"
#include "ui/playlist/PlaylistArea.h"
#include "ui/playlist/PlaylistToolbar.h"
#include "ui/playlist/SearchField.h"
#include "ui/playlist/TrackListView.h"
#include "ui/theme/ApplyTheme.h"

#include <QApplication>
#include <QScrollBar>
#include <QTest>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>

using namespace quorel;

namespace {

constexpr int kRuns = 40;

Playlist bigPlaylist(const QString& name) {
    Playlist playlist = Playlist::named(name);
    for (Playlist& part : bench::sampleState(100'000).playlists)
        playlist.tracks += std::move(part.tracks);
    for (Track& track : playlist.tracks)
        track.id = QUuid::createUuid();
    return playlist;
}

/// The window as the program has it, at its usual size.
struct Window {
    Window() {
        PersistedState state;
        state.playlists = {bigPlaylist(QStringLiteral("First")),
                           bigPlaylist(QStringLiteral("Second"))};
        const QString file = pathFromBytes(folder.path("state.json"));
        Persistence(file).save(state);
        player = std::make_unique<PlayerController>(
            PlayerParts{.clock = clock,
                        .engine = std::make_unique<test::FakeEngine>(clock),
                        .stateFile = file,
                        .open = [](const TrackToOpen&) { return OpenedTrack(); }});
        area = std::make_unique<PlaylistArea>(*player, clock);
        area->resize(560, 700);
        area->show();
        area->repaint(); // loads the fonts, also those of foreign titles
    }

    QUuid list(qsizetype index) const { return player->playlistAt(index).id; }
    TrackListView& view() const { return area->list(); }

    test::TestFolder folder;
    QtClock clock;
    std::unique_ptr<PlayerController> player;
    std::unique_ptr<PlaylistArea> area;
};

void doNothing(int) {}

double processorTime() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

/// Prints the median and the longest of some runs; an act, and what is done before it and not
/// measured, are told which run it is.
template <class Act, class Before = void (*)(int)>
void measure(Window& window, const char* what, double limit, Act act, Before before = doNothing) {
    std::vector<double> taken;
    double mostBusy = 0;
    for (int run = 0; run < kRuns; ++run) {
        before(run);
        QCoreApplication::processEvents();
        const auto start = std::chrono::steady_clock::now();
        const double ran = processorTime();
        act(run);
        window.area->repaint();
        const std::chrono::duration<double, std::milli> time =
            std::chrono::steady_clock::now() - start;
        taken.push_back(time.count());
        mostBusy = std::max(mostBusy, processorTime() - ran);
    }
    std::ranges::sort(taken);
    std::printf("%-30s median %6.2f   longest %6.2f   most processor %6.2f   wanted %3.0f ms\n",
                what, taken[taken.size() / 2], taken.back(), mostBusy, limit);
}

} // namespace

int main(int argc, char* argv[]) {
    QApplication application(argc, argv);
    applyTheme(application);
    Window window;
    PlayerController& player = *window.player;
    QScrollBar& bar = *window.view().verticalScrollBar();

    measure(window, "scroll by a page", 3,
            [&](int run) { bar.setValue((run + 1) * window.view().viewport()->height()); });
    SearchField& field = window.area->toolbar().search();
    const QString typed = QStringLiteral("movement no. 12");
    player.prepareSearch(); // as entering the field does
    QTest::qWait(500);
    measure(window, "a key typed into the search", 16,
            [&](int run) { field.setText(typed.left(run % typed.size() + 1)); });
    field.clear();
    measure(window, "select all", 16, [&](int run) {
        if (run % 2 == 0)
            player.selectAll();
        else
            player.selectOnly(player.activePlaylist().tracks[run].id);
    });
    measure(window, "switch between two playlists", 30,
            [&](int run) { player.setActivePlaylist(window.list((run + 1) % 2)); });
    const auto close = [&player, closed = window.list(0)](int) { player.closePlaylist(closed); };
    const auto undo = [&player](int) { player.undoClosePlaylist(); };
    measure(window, "close a playlist", 50, close, undo);
    measure(window, "undo the closing", 50, undo, close);
    QTest::keyClick(&window.view(), Qt::Key_Home);
    measure(window, "find a name by typing", 16,
            [&](int) { window.view().keyboardSearch(QStringLiteral("zzz")); });
    return 0;
}
