#include "player/ControllerFixture.h"

using namespace quorel;
using namespace quorel::test;

namespace {

using Mode = PlaybackMode;

class ControllerTransport : public ControllerTest {
  protected:
    /// A letter plays that track, n next, p previous, e the track ends by itself, s stop, t play
    /// button, x it is removed, a digit seeks to that second; the letter playing after each, '-'
    /// where it stopped.
    std::string after(std::string_view commands) {
        std::string letters;
        for (const char command : commands) {
            if (command >= 'A' && command <= 'Z')
                play(command);
            else if (command == 'n')
                controller->nextTrack();
            else if (command == 'p')
                controller->prevTrack();
            else if (command == 'e')
                advance(engine->duration() - engine->currentTime() + 0.25);
            else if (command >= '1' && command <= '9')
                controller->seek(command - '0');
            else if (command == 'x')
                remove(playing(), 0);
            else if (command == 's')
                controller->stop();
            else if (command == 't')
                controller->togglePlay();
            advance(0.1);
            letters += playing();
        }
        return letters;
    }
    void remove(char letter, qsizetype tab) {
        controller->setActivePlaylist(list(tab));
        select(std::string(1, letter));
        controller->removeSelected();
    }
};

} // namespace

TEST_F(ControllerTransport, WhatFollows) {
    const std::tuple<const char*, Mode, bool, std::string, std::string, std::string> kCases[] = {
        {"through the list once", Mode::Normal, true, "", "Beee", "BCD-"},
        {"without joining", Mode::Normal, false, "", "Beee", "BCD-"},
        {"stops after each", Mode::StopAfter, true, "", "Ae", "A-"},
        {"the user goes on", Mode::StopAfter, true, "", "Ann", "ABC"},
        {"one again and again", Mode::One, true, "", "Been", "BBBC"},
        {"one without joining", Mode::One, false, "", "Been", "BBBC"},
        {"round and round", Mode::All, true, "", "Ceeen", "CDABC"},
        {"the user's end", Mode::Normal, true, "", "Cnn", "CD-"},
        {"goes on after a stop", Mode::Normal, true, "", "Bsnn", "B-CD"},
        {"back, never round", Mode::All, true, "", "Cpppn", "CBAAB"},
        {"far into a track, to its start", Mode::Normal, true, "", "C5pp3p", "CCCBBA"},
        {"the button begins anew", Mode::Normal, true, "", "Dst", "D-A"},
        {"passes over a missing one", Mode::Normal, true, "B", "Ae", "AC"},
        {"and without joining", Mode::Normal, false, "BC", "Ae", "AD"},
        {"a missing one chosen", Mode::Normal, true, "B", "Be", "CD"},
        {"round to itself", Mode::All, true, "BCD", "Ae", "AA"},
        {"back from a removed one", Mode::Normal, true, "", "Cxp", "CCB"},
        {"nothing left", Mode::Normal, true, "CD", "Be", "B-"},
        {"all missing", Mode::All, true, "ABCD", "B", "-"},
        {"one that is missing", Mode::One, true, "B", "Be", "CC"},
        {"missing, then stop", Mode::StopAfter, true, "B", "B", "-"},
    };
    for (const auto& [what, mode, gapless, absent, commands, letters] : kCases) {
        saved.settings.pbMode = mode;
        saved.settings.gapless = gapless;
        missing = absent;
        launch();
        opened.clear();
        EXPECT_EQ(after(commands), letters) << what;
        EXPECT_LE(opened.size(), 12U) << what << ": no endless trying";
    }
}

TEST_F(ControllerTransport, ShufflePlaysEachOnceAndGoesBack) {
    saved.playlists = {letters("ABCDEFGH")};
    saved.settings.shuffle = true;
    launch();
    const std::string first = after("Ceeneene");
    EXPECT_EQ(std::set(first.begin(), first.end()).size(), 8U) << first;
    EXPECT_EQ(after("pnn"), first.substr(6, 2) + "-");
    missing = "ADEFGH";
    EXPECT_EQ(after("Cee"), "CB-") << "passes over what is missing";
    missing.clear();
    after("Cx");
    advance(2);
    controller->prevTrack();
    EXPECT_EQ(controller->playback().currentTime(), 0) << "a removed one can only begin anew";
    controller->undoRemove();
    controller->stop();

    controller->setPlaybackMode(Mode::All);
    for (const char* pass : {"Ceeeeeee", "eeeeeeee"}) {
        const char last = playing();
        const std::string played = after(pass);
        EXPECT_NE(played.front(), last);
        EXPECT_EQ(std::set(played.begin(), played.end()).size(), 8U) << played;
    }
}

TEST_F(ControllerTransport, TenNextsOpenOneFile) {
    saved.playlists = {letters("ABCDEFGHIJKLMN")};
    launch();
    play('A');
    opened.clear();
    for (int i = 0; i < 10; ++i) {
        controller->nextTrack();
        advance(0.01);
    }
    EXPECT_EQ(playing(), 'A') << "the old one sounds on meanwhile";
    advance(0.05);
    EXPECT_EQ(playing(), 'K');
    EXPECT_LE(opened.size(), 2U) << opened;
}

TEST_F(ControllerTransport, QueuesWhatFollowsOnce) {
    using Change = std::function<void(PlayerController&)>;
    const auto mode = [](Mode to) { return [to](PlayerController& p) { p.setPlaybackMode(to); }; };
    const auto toggle = [](bool AppSettings::*field) {
        return [field](PlayerController& p) {
            p.changeSettings([field](AppSettings& s) { s.*field = !(s.*field); });
        };
    };
    const auto without = [](char letter) {
        return [letter](PlayerController& p) {
            p.selectOnly(idOf(letter));
            p.removeSelected();
        };
    };
    // What is done when B is queued behind A; what is planned then, plays at last, was told.
    const std::tuple<const char*, Change, char, char, std::string> kCases[] = {
        {"a seek", [](PlayerController& p) { p.seek(15); }, 'B', 'B', "kQ"},
        {"stop after", mode(Mode::StopAfter), '-', '-', "D"},
        {"one", mode(Mode::One), '-', 'A', "DQ"},
        {"all", mode(Mode::All), 'B', 'B', ""},
        {"no joining", toggle(&AppSettings::gapless), '-', 'B', "D"},
        {"trimming", toggle(&AppSettings::trimSilence), 'B', 'B', "DQ"},
        {"it is moved", [](PlayerController& p) { p.moveTrack(1, 4); }, 'C', 'C', "DQ"},
        {"another comes between", [](PlayerController& p) { p.moveTrack(3, 1); }, 'D', 'D', "DQ"},
        {"the one behind it goes", without('C'), 'B', 'B', ""},
        {"it is removed", without('B'), 'C', 'C', "DQ"},
        {"the playing one is removed", without('A'), 'B', 'B', ""},
    };
    for (const auto& [what, change, planned, after, log] : kCases) {
        SCOPED_TRACE(what);
        launch();
        play('A');
        advance(9);
        EXPECT_EQ(engine->takeLog(), "LQ");
        EXPECT_EQ(letterOf(controller->plannedNextID()), 'B');
        change(*controller);
        advance(1);
        EXPECT_EQ(letterOf(controller->plannedNextID()), planned);
        EXPECT_EQ(engine->takeLog(), log);
        advance(10.5);
        EXPECT_EQ(playing(), after);
    }
}

TEST_F(ControllerTransport, WhatCannotBeJoinedIsTriedOnceAndKeptOpen) {
    odd = "B";
    launch();
    play('A');
    opened.clear();
    advance(19);
    EXPECT_EQ(engine->takeLog(), "Lx");
    advance(1.5);
    EXPECT_EQ(playing(), 'B');
    EXPECT_EQ(opened, "B");
}

TEST_F(ControllerTransport, ChangesFadeOutWhatSounds) {
    saved.settings.fadeChangeOn = true;
    launch();
    play('A');
    advance(5);
    engine->takeLog();
    controller->nextTrack();
    advance(0.3);
    EXPECT_EQ(playing(), 'A');
    controller->nextTrack(); // replaces it, in the same fade
    advance(0.1);
    EXPECT_EQ(engine->takeLog(), "s400");
    advance(0.1);
    EXPECT_EQ(playing(), 'C');
    EXPECT_EQ(engine->takeLog(), "L");

    controller->nextTrack();
    controller->stop();
    advance(2);
    EXPECT_EQ(playing(), '-') << "a stop cancels the change";
    EXPECT_EQ(engine->takeLog(), "s400s");
    play('A');
    advance(20.2);
    EXPECT_EQ(playing(), 'B');
    EXPECT_EQ(engine->takeLog(), "LQ") << "what ends by itself is not faded";
    controller->pause();
    controller->nextTrack();
    advance(0.1);
    EXPECT_EQ(engine->takeLog(), "pL") << "nor what does not sound";
}

TEST_F(ControllerTransport, PlayButton) {
    // Selected, playing, paused; what plays after it, and whether that sounds.
    const std::tuple<std::string, char, bool, char, bool> kCases[] = {
        {"", '-', false, 'A', true},  {"C", '-', false, 'C', true},  {"DB", '-', false, 'B', true},
        {"C", 'B', false, 'C', true}, {"B", 'B', false, 'B', false}, {"B", 'B', true, 'B', true},
        {"", 'B', false, 'B', false}, {"", 'B', true, 'B', true},
    };
    for (const auto& [selected, before, paused, expected, sounds] : kCases) {
        SCOPED_TRACE(selected + ' ' + before);
        launch();
        if (before != '-')
            play(before);
        if (paused)
            controller->pause();
        if (!selected.empty())
            select(selected);
        controller->togglePlay();
        advance(0.1);
        EXPECT_EQ(playing(), expected);
        EXPECT_EQ(controller->playback().isPlaying(), sounds);
        controller->playPause(); // pauses whatever sounds, and else acts as the button does
        EXPECT_FALSE(controller->playback().isPlaying() && sounds);
    }
}

TEST_F(ControllerTransport, ClosingAndClearingStopWhatPlaysFromThere) {
    saved.playlists = {letters("ABCD"), letters("EFG")};
    launch();
    const QUuid other = list(1);
    play('B');
    controller->setActivePlaylist(other);
    controller->clearPlaylist(other);
    EXPECT_EQ(after(" n"), "BC") << "what another list does is nothing to it";
    controller->clearPlaylist(list());
    EXPECT_EQ(playing(), '-');
    EXPECT_EQ(controller->playingPlaylistID(), list());
    controller->closePlaylist(list());
    EXPECT_EQ(controller->playingPlaylistID(), std::nullopt);
    EXPECT_EQ(controller->playlistCount(), 1);
    EXPECT_EQ(controller->activePlaylistID(), other);
}

TEST_F(ControllerTransport, ATrackRemovedOnItsWayLeavesTheOneBefore) {
    saved.playlists = {letters("ABCD"), letters("EFG")};
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

TEST_F(ControllerTransport, WhatWasQueuedBeforeAndIsRemovedDoesNotPlay) {
    saved.playlists = {letters("ABCD"), letters("EFG")};
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
