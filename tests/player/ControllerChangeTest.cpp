// What happens while a track is on its way: its file is being opened, the one before it plays.
#include "player/ControllerFixture.h"

using namespace quorel;
using namespace quorel::test;

namespace {

class ControllerChange : public ControllerTest {
  protected:
    ControllerChange() { saved.playlists = {letters("ABCD"), letters("EFG")}; }

    void remove(char letter, qsizetype tab) {
        controller->setActivePlaylist(list(tab));
        select(std::string(1, letter));
        controller->removeSelected();
    }
};

} // namespace

TEST_F(ControllerChange, ATrackRemovedOnItsWayLeavesTheOneBefore) {
    launch();
    play('B');
    advance(9);
    controller->play(idOf('F'), list(1));
    remove('F', 1);
    advance(1);
    EXPECT_EQ(playing(), 'B');
    controller->setPlaybackMode(PlaybackMode::StopAfter);
    advance(12);
    EXPECT_EQ(playing(), '-') << "what was queued before is not any more";
    controller->nextTrack();
    advance(0.1);
    EXPECT_EQ(playing(), 'C');
}

TEST_F(ControllerChange, WhatWasQueuedBeforeAndIsRemovedDoesNotPlay) {
    launch();
    play('A');
    advance(9);
    controller->play(idOf('F'), list(1));
    remove('B', 0);
    clock.advance(std::chrono::seconds(15)); // a slow disk
    EXPECT_EQ(playing(), 'A');
    settle();
    EXPECT_EQ(playing(), 'F');
}

TEST_F(ControllerChange, IsToldOfOnceItIsThere) {
    launch();
    play('A');
    int told = 0;
    const auto look = [this, &told] {
        ++told;
        EXPECT_EQ(controller->playingTrack()->id, controller->playingTrackID());
        EXPECT_EQ(controller->playback().currentTime(), engine->currentTime());
    };
    QObject::connect(controller.get(), &PlayerController::transportChanged, look);
    QObject::connect(&controller->playback(), &PlaybackState::positionChanged, look);
    controller->play(idOf('C'), list());
    controller->pause(); // it shall be paused when it is there
    advance(0.1);
    EXPECT_EQ(playing(), 'C');
    EXPECT_FALSE(controller->playback().isPlaying());
    EXPECT_GT(told, 2);
}

TEST_F(ControllerChange, WhatMayFollowIsToldOf) {
    saved.playlists = {letters("AB"), letters("")};
    launch();
    bool canPlayNext = controller->canPlayNext();
    QObject::connect(controller.get(), &PlayerController::transportChanged,
                     [&] { canPlayNext = controller->canPlayNext(); });
    for (const qsizetype tab :
         {1, 0}) { // with nothing playing, what may follow is in the tab shown
        controller->setActivePlaylist(list(tab));
        EXPECT_EQ(canPlayNext, tab == 0);
    }
    play('A');
    controller->nextTrack(); // on its way already
    EXPECT_FALSE(canPlayNext);
}
