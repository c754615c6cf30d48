// How long the main thread is busy with what the user does to one playlist of 100,000 and of
// 1,000,000 tracks, and with the work in the background: milliseconds, less what the thread waited
// for a busy processor. The engine is one without sound; saving and reading have their threads.
#include "SampleState.h"
#include "core/QtClock.h"
#include "model/Path.h"
#include "player/FakeEngine.h"
#include "player/PlayerController.h"
#include "storage/Persistence.h"
#include "support/AudioFixtures.h"
#include "support/ProcessorWait.h"

#include <sys/stat.h>

#include <QCoreApplication>
#include <algorithm>
#include <cstdio>
#include <numeric>
#include <thread>

using namespace quorel;
using namespace quorel::test;
using namespace std::chrono_literals;

namespace {

constexpr int kRepeats = 7;
constexpr qsizetype kBlock = 10'000;

using Steady = std::chrono::steady_clock;

template <class Work>
double milliseconds(Work work) {
    const auto waited = waitedForProcessor();
    const auto begin = Steady::now();
    work();
    const auto taken = Steady::now() - begin;
    return std::chrono::duration<double, std::milli>(taken - (waitedForProcessor() - waited))
        .count();
}

void print(const char* what, std::vector<double> times, const char* promised = "") {
    std::ranges::sort(times);
    std::printf("%-44s %9.2f %9.2f %9.2f   %s\n", what, times.front(), times[times.size() / 2],
                times.back(), promised);
    std::fflush(stdout);
}

class Bench {
  public:
    explicit Bench(int tracks) {
        std::printf("%d tracks%35s %9s %9s %9s   promised\n", tracks, "", "least", "median",
                    "most");
        PersistedState state = bench::sampleState(tracks);
        for (Playlist& other : state.playlists.mid(1))
            state.playlists.front().tracks += std::move(other.tracks);
        state.playlists.resize(1);
        state.resumePlaylistID.reset();
        if (!Persistence(stateFile()).save(state))
            std::printf("The state could not be saved.\n");
    }

    void run() {
        load();
        search();
        print("selecting all", times([] {}, [this] { player_->selectAll(); }), "5");
        remove();
        moveBlock();
        insert();
        readTags();
        save();
        editWhileSaving();
    }

  private:
    QString stateFile() const { return pathFromBytes(QByteArray::fromStdString(file_)); }

    template <class Prepare, class Work>
    static std::vector<double> times(Prepare prepare, Work work) {
        std::vector<double> times;
        for (int i = 0; i < kRepeats; ++i) {
            prepare();
            times.push_back(milliseconds(work));
        }
        return times;
    }

    void load() {
        print("beginning, with loading",
              times([this] { player_.reset(); },
                    [this] {
                        player_ = std::make_unique<PlayerController>(
                            PlayerParts{.clock = clock_,
                                        .engine = std::make_unique<FakeEngine>(clock_),
                                        .stateFile = stateFile()});
                    }));
    }

    void type(const QString& text) {
        player_->setSearchText(text);
        found_ = player_->visibleTracks().size();
    }
    void search() {
        print("entering the search field, a slice",
              {milliseconds([this] { player_->prepareSearch(); })}, "8");
        settle();
        print("the first letter of a search", {milliseconds([this] { type(QStringLiteral("e")); })},
              "8");
        for (const char* text : {"e", "zq", "minor key"})
            print(qPrintable(QStringLiteral("a keystroke: %1").arg(QLatin1String(text))),
                  times([this] { type({}); }, [&] { type(QLatin1String(text)); }), "8");
        type({});
    }

    void remove() {
        const auto selectHalf = [this] {
            const QList<Track> tracks = player_->activePlaylist().tracks;
            player_->selectOnly(tracks.front().id);
            for (qsizetype row = 2; row < tracks.size(); row += 2)
                player_->handleTrackClick(tracks.at(row).id, false, true);
        };
        std::vector<double> removed;
        std::vector<double> undone;
        for (int i = 0; i < kRepeats; ++i) {
            selectHalf();
            removed.push_back(milliseconds([this] { player_->removeSelected(); }));
            undone.push_back(milliseconds([this] { player_->undoRemove(); }));
        }
        print("removing every second row", removed, "60");
        print("undoing that", undone, "60");
    }

    void moveBlock() {
        std::vector<qsizetype> rows(kBlock);
        std::iota(rows.begin(), rows.end(), player_->activePlaylist().tracks.size() - kBlock);
        print("moving 10,000 rows from the end to the front",
              times([] {}, [&] { player_->moveTracks(rows, 0); }), "20");
    }

    void insert() {
        QStringList files;
        for (qsizetype i = 0; i < kBlock; ++i)
            files += QStringLiteral("/nowhere/Artist %1 - Title %2.flac").arg(i % 100).arg(i);
        const auto takeOut = [this] {
            player_->cancelActivity();
            player_->setSearchText(QStringLiteral("artist"));
            player_->selectAll();
            player_->removeSelected();
            player_->setSearchText({});
        };
        print("inserting 10,000 files at the front",
              times(takeOut, [&] { player_->insertFiles(files, 0); }), "20");
        takeOut();
    }

    /// Of the turn of the loop in which a batch of readings arrives.
    void readTags() {
        const std::string file = folder_.write("sound.wav", wavBytes(TestSound(100, 2, 16)));
        const QStringList files(100, pathFromBytes(QByteArray::fromStdString(file)));
        std::vector<double> turns;
        for (int i = 0; i < kRepeats; ++i) {
            bool isDone = false;
            const auto connection = QObject::connect(
                player_.get(), &PlayerController::trackDataChanged, [&isDone] { isDone = true; });
            player_->insertFiles(files, 0);
            double last = 0;
            while (!isDone)
                last = turn();
            turns.push_back(last);
            QObject::disconnect(connection);
        }
        print("taking over 100 readings of tags", turns, "3");
    }

    /// The longest turn of the loop from a change until it is saved.
    void save() {
        std::vector<double> longest;
        for (int i = 0; i < kRepeats; ++i) {
            settle();
            const ino_t before = inode();
            player_->setVolume(0.1 * i);
            double most = 0;
            while (inode() == before)
                most = std::max(most, turn());
            for (int after = 0; after < 20; ++after)
                most = std::max(most, turn());
            longest.push_back(most);
        }
        print("the longest turn of the loop during a save", longest, "16");
    }

    void editWhileSaving() {
        print("moving a row", times([this] { settle(); }, [this] { player_->moveTrack(0, 2); }));
        std::vector<double> edits;
        for (int i = 0; i < kRepeats; ++i) {
            settle();
            const ino_t before = inode();
            bool isBegun = false;
            player_->setVolume(0.1 * i);
            const auto timer =
                clock_.startTimer(502ms, Clock::Repeat::Once, [&isBegun] { isBegun = true; });
            while (!isBegun)
                turn();
            edits.push_back(milliseconds([this] { player_->moveTrack(0, 2); }));
            if (inode() != before)
                std::printf("The save had ended before.\n");
        }
        print("the same while a save is under way", edits);
    }

    double turn() {
        const double taken = milliseconds([] { QCoreApplication::processEvents(); });
        std::this_thread::sleep_for(1ms);
        return taken;
    }
    /// Until all is saved: nothing has been written for a while.
    void settle() {
        ino_t last = 0;
        auto since = Steady::now();
        while (Steady::now() - since < 4s) {
            turn();
            if (std::exchange(last, inode()) != inode())
                since = Steady::now();
        }
    }
    ino_t inode() const {
        struct stat status {};
        ::stat(file_.c_str(), &status);
        return status.st_ino;
    }

    TemporaryFolder folder_;
    std::string file_ = folder_.path("state.json");
    QtClock clock_;
    std::unique_ptr<PlayerController> player_;
    qsizetype found_ = 0;
};

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    for (const int tracks : {100'000, 1'000'000})
        Bench(tracks).run();
}
