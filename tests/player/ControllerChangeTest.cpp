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
