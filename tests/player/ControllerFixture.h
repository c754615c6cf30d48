#pragma once

#include "core/ManualClock.h"
#include "model/Json.h"
#include "model/Path.h"
#include "player/FakeEngine.h"
#include "player/Insides.h"
#include "player/MadeList.h"
#include "player/PlayerController.h"
#include "storage/Persistence.h"
#include "support/MadeFile.h"
#include "support/TestFolder.h"

#include <random>

namespace quorel::test {

/// A window that notes what it is told: small letters for off.
struct NotedWindow final : PlayerWindow {
    void setAlwaysOnTop(bool on) override { log += on ? "T" : "t"; }
    void setPlaylistShown(bool on, bool) override { log += on ? "P" : "p"; }
    void setFullScreen(bool on) override { log += on ? "F" : "f"; }
    void setScale(double scale, bool) override { log += std::to_string(int(scale * 10)); }
    void setWordmarkIcon(bool on) override { log += on ? "W" : "w"; }
    void raiseWindow() override { log += "r"; }
    std::string takeLog() { return std::exchange(log, {}); }

    std::string log;
};

/// The controller with a fake engine, on the manual clock. Tracks are letters: 'A' is the file /A,
/// 20 s long at 8 kHz; those of `missing` cannot be opened, those of `odd` have another rate.
class ControllerTest : public testing::Test {
  protected:
    ControllerTest() {
        saved.playlists = {letters("ABCD")};
        saved.settings.volume = 0.5;
    }
    void TearDown() override { quit(); }

    static Playlist letters(std::string_view which) {
        Playlist playlist = Playlist::named(QStringLiteral("Letters"));
        playlist.tracks = tracksOf(which);
        for (Track& track : playlist.tracks) {
            track.path = u'/' + track.title;
            track.duration = 20;
            track.bitrateKbps = 320;
            track.sampleRateHz = 8000;
            track.bpm = 100;
        }
        return playlist;
    }

    QString stateFile() const { return pathFromBytes(folder.path("state.json")); }

    /// Begins with what `saved` says.
    PlayerController& launch() {
        quit();
        Persistence(stateFile()).save(saved);
        return relaunch();
    }
    /// Begins with what there is.
    PlayerController& relaunch(bool resume = true) {
        quit();
        auto made = std::make_unique<FakeEngine>(clock);
        engine = made.get();
        controller = std::make_unique<PlayerController>(
            PlayerParts{.clock = clock,
                        .engine = std::move(made),
                        .stateFile = stateFile(),
                        .queues = SerialQueue::Mode::Pumped,
                        .open = [this](const TrackToOpen& wanted) { return open(wanted); },
                        .random = [random = std::mt19937_64(7)]() mutable { return random(); }});
        controller->start(resume);
        settle();
        return *controller;
    }
    void quit() {
        controller.reset();
        engine = nullptr;
    }

    OpenedTrack open(const TrackToOpen& wanted) {
        opened += wanted.path.back().toLatin1();
        if (missing.find(opened.back()) != std::string::npos)
            return {};
        const int rate = odd.find(opened.back()) != std::string::npos ? 11025 : 8000;
        return {std::make_shared<MadeFile>(rate, 2, Samples{}, 20 * rate), {}};
    }

    /// Lets the background come to rest.
    void settle() {
        do
            clock.runPosted();
        while (PlayerControllerInsides::pumpQueues(*controller));
    }
    void advance(double seconds) {
        const auto end = clock.now() + std::chrono::nanoseconds(std::llround(seconds * 1e9));
        settle();
        while (clock.now() < end) {
            clock.advanceTo(std::min(end, clock.nextDeadline().value_or(end)));
            settle();
        }
    }

    QUuid list(qsizetype index = 0) const { return controller->playlistAt(index).id; }
    void play(char letter) {
        controller->play(idOf(letter), list());
        advance(0.1);
    }
    void select(std::string_view which) {
        controller->selectOnly(idOf(which.front()));
        for (const char letter : which.substr(1))
            controller->handleTrackClick(idOf(letter), false, true);
    }
    char playing() const { return letterOf(controller->playingTrackID()); }
    std::string shown() const { return lettersOf(controller->activePlaylist().tracks); }
    PersistedState stored() const {
        return Persistence(stateFile()).load().value_or(PersistedState());
    }

    TestFolder folder;
    PersistedState saved;
    std::string missing;
    std::string odd;
    std::string opened;
    ManualClock clock;
    FakeEngine* engine = nullptr;
    std::unique_ptr<PlayerController> controller;
};

} // namespace quorel::test
