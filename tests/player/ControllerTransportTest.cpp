#include "player/ControllerFixture.h"

using namespace quorel;
using namespace quorel::test;

namespace {

using Mode = PlaybackMode;

class ControllerTransport : public ControllerTest {
  protected:
    /// n next, p previous, e the track ends by itself, s stop, t play button, ' ' nothing; the
    /// letter playing after each, '-' where it stopped.
    std::string after(std::string_view commands) {
        std::string letters;
        for (const char command : commands) {
            switch (command) {
            case 'n':
                controller->nextTrack();
                break;
            case 'p':
                controller->prevTrack();
                break;
            case 'e':
                advance(engine->duration() - engine->currentTime() + 0.25);
                break;
            case 's':
                controller->stop();
                break;
            case 't':
                controller->togglePlay();
                break;
            default:
                break;
            }
            advance(0.1);
            letters += playing();
        }
        return letters;
    }
};

} // namespace

TEST_F(ControllerTransport, WhatFollows) {
    struct Case {
        const char* what;
        Mode mode;
        bool gapless;
        std::string missing;
        char start;
        std::string commands;
        std::string letters;
    };
    const Case kCases[] = {
        {"through the list once", Mode::Normal, true, "", 'B', "eee", "CD-"},
        {"without joining", Mode::Normal, false, "", 'B', "eee", "CD-"},
        {"stops after each", Mode::StopAfter, true, "", 'A', "e", "-"},
        {"the user goes on", Mode::StopAfter, true, "", 'A', "nn", "BC"},
        {"one again and again", Mode::One, true, "", 'B', "een", "BBC"},
        {"one without joining", Mode::One, false, "", 'B', "een", "BBC"},
        {"round and round", Mode::All, true, "", 'C', "eeen", "DABC"},
        {"the user's end", Mode::Normal, true, "", 'C', "nn", "D-"},
        {"goes on after a stop", Mode::Normal, true, "", 'B', "snn", "-CD"},
        {"back, never round", Mode::All, true, "", 'C', "pppn", "BAAB"},
        {"the button begins anew", Mode::Normal, true, "", 'D', "st", "-A"},
        {"passes over a missing one", Mode::Normal, true, "B", 'A', "e", "C"},
        {"and without joining", Mode::Normal, false, "BC", 'A', "e", "D"},
        {"a missing one chosen", Mode::Normal, true, "B", 'B', " e", "CD"},
        {"nothing left", Mode::Normal, true, "CD", 'B', "e", "-"},
        {"all missing", Mode::All, true, "ABCD", 'B', " ", "-"},
        {"one that is missing", Mode::One, true, "B", 'B', "e", "C"},
        {"missing, then stop", Mode::StopAfter, true, "B", 'B', " ", "-"},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.what);
        saved.settings.pbMode = c.mode;
        saved.settings.gapless = c.gapless;
        missing = c.missing;
        launch();
        opened.clear();
        play(c.start);
        EXPECT_EQ(after(c.commands), c.letters);
        EXPECT_LE(opened.size(), 12U); // no endless trying
    }
}

TEST_F(ControllerTransport, ShufflePlaysEachOnceAndGoesBack) {
    saved.playlists = {letters("ABCDEFGH")};
    saved.settings.shuffle = true;
    launch();
    play('C');
    std::string first(1, playing());
    first += after("eeneene");
    EXPECT_EQ(std::set(first.begin(), first.end()).size(), 8U) << first;
    EXPECT_EQ(after("p"), first.substr(6, 1));
    EXPECT_EQ(after("nn"), first.substr(7, 1) + "-");

    controller->setPlaybackMode(Mode::All);
    play('C');
    std::string played(1, playing());
    played += after("eeeeeee");
    EXPECT_EQ(std::set(played.begin(), played.end()).size(), 8U) << played;
    const char last = played.back();
    played = after("eeeeeeee");
    EXPECT_NE(played.front(), last);
    EXPECT_EQ(std::set(played.begin(), played.end()).size(), 8U) << played;
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
    struct Case {
        const char* what;
        std::function<void(PlayerController&)> change; ///< when B is queued behind A
        char planned;
        char after;
        std::string log;
    };
    const Case kCases[] = {
        {"nothing", [](PlayerController&) {}, 'B', 'B', ""},
        {"a seek", [](PlayerController& p) { p.seek(15); }, 'B', 'B', "kQ"},
        {"stop after", [](PlayerController& p) { p.setPlaybackMode(Mode::StopAfter); }, '-', '-',
         "D"},
        {"one", [](PlayerController& p) { p.setPlaybackMode(Mode::One); }, '-', 'A', "DQ"},
        {"all", [](PlayerController& p) { p.setPlaybackMode(Mode::All); }, 'B', 'B', ""},
        {"no joining",
         [](PlayerController& p) { p.changeSettings([](AppSettings& s) { s.gapless = false; }); },
         '-', 'B', "D"},
        {"trimming",
         [](PlayerController& p) {
             p.changeSettings([](AppSettings& s) { s.trimSilence = true; });
         },
         'B', 'B', "DQ"},
        {"it is moved", [](PlayerController& p) { p.moveTrack(1, 4); }, 'C', 'C', "DQ"},
        {"another comes between", [](PlayerController& p) { p.moveTrack(3, 1); }, 'D', 'D', "DQ"},
        {"the one behind it goes",
         [](PlayerController& p) {
             p.selectOnly(idOf('C'));
             p.removeSelected();
         },
         'B', 'B', ""},
        {"it is removed",
         [](PlayerController& p) {
             p.selectOnly(idOf('B'));
             p.removeSelected();
         },
         'C', 'C', "DQ"},
        {"the playing one is removed",
         [](PlayerController& p) {
             p.selectOnly(idOf('A'));
             p.removeSelected();
         },
         'B', 'B', ""},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.what);
        launch();
        play('A');
        advance(9);
        EXPECT_EQ(engine->takeLog(), "LQ");
        EXPECT_EQ(letterOf(controller->plannedNextID()), 'B');
        c.change(*controller);
        advance(1);
        EXPECT_EQ(letterOf(controller->plannedNextID()), c.planned);
        EXPECT_EQ(engine->takeLog(), c.log);
        advance(10.5);
        EXPECT_EQ(playing(), c.after);
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
    struct Case {
        std::string selected;
        char playing;
        bool paused;
        char expected;
        bool sounds; ///< after it
    };
    const Case kCases[] = {
        {"", '-', false, 'A', true},  {"C", '-', false, 'C', true},  {"DB", '-', false, 'B', true},
        {"C", 'B', false, 'C', true}, {"B", 'B', false, 'B', false}, {"B", 'B', true, 'B', true},
        {"", 'B', false, 'B', false}, {"", 'B', true, 'B', true},
    };
    for (const Case& c : kCases) {
        launch();
        if (c.playing != '-')
            play(c.playing);
        if (c.paused)
            controller->pause();
        if (!c.selected.empty())
            select(c.selected);
        controller->togglePlay();
        advance(0.1);
        EXPECT_EQ(playing(), c.expected) << &c - kCases;
        EXPECT_EQ(controller->playback().isPlaying(), c.sounds) << &c - kCases;
        controller->playPause(); // pauses whatever sounds, and else acts as the button does
        EXPECT_NE(controller->playback().isPlaying() && c.sounds, true) << &c - kCases;
    }
}

TEST_F(ControllerTransport, KeysSeekAndChangeTheVolume) {
    launch();
    EXPECT_FALSE(controller->handleKey(Qt::Key_Left, Qt::NoModifier, {})) << "nothing to seek in";
    play('B');
    advance(2.9);
    int nudges = 0;
    QObject::connect(controller.get(), &PlayerController::keyNudge, [&nudges] { ++nudges; });
    EXPECT_TRUE(controller->handleKey(Qt::Key_Left, Qt::NoModifier, {}));
    EXPECT_EQ(controller->playback().currentTime(), 0);
    EXPECT_TRUE(controller->handleKey(Qt::Key_Right, Qt::NoModifier, {}));
    EXPECT_EQ(controller->playback().currentTime(), 5);
    controller->setVolume(0.98);
    EXPECT_TRUE(controller->handleKey(Qt::Key_Up, Qt::NoModifier, {}));
    EXPECT_TRUE(controller->handleKey(Qt::Key_Up, Qt::NoModifier, {}));
    EXPECT_EQ(engine->volume, 1);
    EXPECT_EQ(nudges, 4);
    EXPECT_TRUE(controller->handleKey(Qt::Key_A, Qt::ControlModifier, {}));
    EXPECT_EQ(controller->selection().size(), 4U);
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
