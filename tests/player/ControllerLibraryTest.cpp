#include "player/ControllerFixture.h"
#include "storage/Files.h"

using namespace quorel;
using namespace quorel::test;

namespace {

class ControllerLibrary : public ControllerTest {
  protected:
    /// A WAV file of a second of silence.
    QString wav(const QByteArray& name) const {
        QByteArray bytes("RIFF\x24\x3e\x00\x00WAVEfmt \x10\x00\x00\x00\x01\x00\x01\x00"
                         "\x40\x1f\x00\x00\x80\x3e\x00\x00\x02\x00\x10\x00"
                         "data\x00\x3e\x00\x00",
                         44);
        bytes.append(QByteArray(15872, '\0'));
        return pathFromBytes(folder.write(name, bytes));
    }
    std::string names() const {
        QStringList names;
        for (qsizetype i = 0; i < controller->playlistCount(); ++i)
            names += controller->playlistAt(i).name;
        return names.join(u'|').toStdString();
    }
    void remove(std::string_view which) {
        select(which);
        controller->removeSelected();
    }
};

} // namespace

TEST_F(ControllerLibrary, RemovingGoesOnBehindThePlayingTrackAndIsUndone) {
    // What plays, is removed bit by bit, how many bits come back; what is next, what is shown.
    using Bits = std::vector<std::string>;
    const std::tuple<char, Bits, int, char, std::string> kCases[] = {
        {'B', {"B"}, 0, 'C', "ACD"},      {'B', {"BC"}, 0, 'D', "AD"},
        {'D', {"D"}, 0, '-', "ABC"},      {'B', {"B", "A"}, 0, 'C', "CD"},
        {'B', {"B", "C"}, 1, 'C', "ACD"}, {'B', {"AB", "D"}, 2, 'C', "ABCD"},
        {'A', {"ABCD"}, 0, '-', ""},      {'A', {"ABCD"}, 1, 'B', "ABCD"},
    };
    for (const auto& [track, removed, undone, next, left] : kCases) {
        SCOPED_TRACE(left + next);
        launch();
        play(track);
        for (const std::string& which : removed)
            remove(which);
        EXPECT_TRUE(controller->selection().isEmpty());
        for (int i = 0; i < undone; ++i)
            controller->undoRemove();
        EXPECT_EQ(shown(), left);
        EXPECT_EQ(playing(), track) << "the removed one plays on";
        EXPECT_EQ(controller->playingTrack()->title, QChar::fromLatin1(track));
        EXPECT_EQ(controller->removalUndoAvailable(), int(removed.size()) > undone);
        controller->nextTrack();
        advance(0.1);
        EXPECT_EQ(playing(), next);
    }
}

TEST_F(ControllerLibrary, FilesLandInTheOrderTheyWereAskedFor) {
    const QString song = wav("music/one.wav");
    wav("music/two.wav");
    const QString other = wav("other.wav");
    folder.write("music/cover.jpg");
    const QString playlistFile =
        pathFromBytes(folder.write("Twice.m3u8", "#EXTM3U\nother.wav\nmusic/one.wav\nother.wav\n"));
    launch();
    const QUuid first = list();
    controller->addPlaylist();
    const QUuid second = controller->activePlaylistID();
    const QString music = pathFromBytes(folder.path("music"));
    controller->importPaths({music},
                            {.kind = ImportTarget::Kind::Gap, .playlist = first, .row = 1});
    controller->importPaths({other}, {.playlist = second});
    controller->importPaths({song}, {});
    controller->importPaths({music}, {.kind = ImportTarget::Kind::NewPlaylist});
    controller->importPaths({playlistFile}, {.playFirst = true});
    EXPECT_EQ(controller->activity()->kind, Activity::Kind::Collecting);
    controller->closePlaylist(second);
    settle();
    EXPECT_EQ(names(), "Letters|music|Twice") << "what was meant for a closed tab is dropped";
    EXPECT_EQ(lettersOf(controller->findPlaylist(first)->tracks), "AonetwoBCD");
    EXPECT_EQ(shown(), "otheroneother") << "in the file's order, duplicates kept";
    EXPECT_EQ(controller->playingTrack()->path, other);
    EXPECT_EQ(controller->playingPlaylistID(), list(2));
    for (const Track& track : controller->activePlaylist().tracks)
        EXPECT_NEAR(track.duration.value_or(0), 0.992, 1e-9) << "its tags were read";
    EXPECT_FALSE(controller->activity());

    controller->importPaths({music}, {});
    controller->cancelActivity();
    settle();
    EXPECT_EQ(controller->activePlaylist().tracks.size(), 3);
    EXPECT_EQ(controller->newPlaylist({}), std::nullopt);
    std::optional<Error> error;
    controller->loadPlaylist(music, [&error](const auto& failed) { error = failed; });
    settle();
    EXPECT_TRUE(error && error->description.contains(QStringLiteral("music")));
    const QString copy = pathFromBytes(folder.path("copy.m3u8"));
    controller->savePlaylist(list(2), copy, [&error](const auto& failed) { error = failed; });
    controller->clearPlaylist(list(2)); // too late for what is saved
    settle();
    EXPECT_FALSE(error);
    controller->loadPlaylist(copy);
    settle();
    EXPECT_EQ(shown(), "otheroneother");
    controller->savePlaylist(list(), pathFromBytes(folder.path("no/folder.m3u8")),
                             [&error](const auto& failed) { error = failed; });
    settle();
    EXPECT_TRUE(error && error->description.contains(QStringLiteral("folder.m3u8")));
    controller->savePlaylist(list(), pathFromBytes(folder.path("last.m3u8")));
    quit();
    EXPECT_TRUE(isRegularFile(folder.path("last.m3u8"))) << "the end waits for it";
}

TEST_F(ControllerLibrary, SavedTagsShowAtOnce) {
    QByteArray frame = QByteArray::fromHex("fffb9064") + QByteArray(413, '\0');
    const QString mp3 = pathFromBytes(folder.write("song.mp3", frame.repeated(40)));
    launch();
    controller->addFiles({mp3, wav("other.wav")});
    settle();
    const QList<Track> before = controller->activePlaylist().tracks;
    ID3Writer::Tags tags;
    tags.artist = QStringLiteral("Her");
    EXPECT_FALSE(controller->saveTags(before.at(4).id, tags));
    const Track& after = controller->activePlaylist().tracks.at(4);
    EXPECT_EQ(after.title, QString()) << "an empty title stays a text";
    EXPECT_EQ(after.duration, before.at(4).duration);
    controller->setSearchText(QStringLiteral("her"));
    EXPECT_EQ(controller->visibleTracks().size(), 2) << "its new artist, and \"other\"";

    EXPECT_FALSE(controller->saveTags(QUuid::createUuid(), tags)) << "an unknown track is no error";
}

TEST_F(ControllerLibrary, MeasuresWhatFollowsAlsoAfterAnEdit) {
    saved.playlists = {letters("")};
    saved.settings.normalize = true;
    launch();
    controller->addFiles({wav("one.wav"), wav("three.wav"), wav("two.wav")});
    settle();
    const auto measured = [this] {
        std::string which;
        for (const Track& track : controller->activePlaylist().tracks)
            which += track.rmsLinear ? 'm' : '-';
        return which;
    };
    controller->play(controller->activePlaylist().tracks.front().id, list());
    advance(0.1);
    EXPECT_EQ(measured(), "mm-");
    controller->moveTrack(2, 1);
    settle();
    EXPECT_EQ(measured(), "mmm");
}

TEST_F(ControllerLibrary, SelectsWhatIsVisible) {
    launch();
    controller->setSearchText(QStringLiteral(" b "));
    controller->selectAll();
    EXPECT_EQ(lettersOf(controller->selection().ids()), "B");
    controller->removeSelected();
    EXPECT_EQ(controller->visibleTracks().size(), 0);
    controller->undoRemove();
    EXPECT_EQ(controller->visibleTracks(), VisibleRows(std::vector<qint32>{1}));
}

TEST_F(ControllerLibrary, ResumesWhereItEnded) {
    saved.settings.resumeOnStartup = true;
    launch();
    EXPECT_EQ(playing(), '-');
    play('C');
    advance(7);
    EXPECT_NEAR(stored().resumePosition.value_or(0), 5, 0.3) << "kept every five seconds";
    quit();
    EXPECT_NEAR(stored().resumePosition.value_or(0), 7, 0.3) << "and at the end";
    relaunch();
    EXPECT_EQ(playing(), 'C');
    EXPECT_NEAR(controller->playback().currentTime(), 7, 0.3);
    EXPECT_TRUE(controller->playback().isPlaying());
    EXPECT_EQ(folder.names().size(), 2U) << "the state and a mark";
    advance(3.1);
    EXPECT_EQ(folder.names(), std::vector<std::string>{"state.json"}) << "it plays without harm";

    quit();
    for (const bool resume : {true, false}) {
        folder.write("state.json.resuming"); // as left by a crash
        relaunch(resume);
        EXPECT_EQ(playing(), '-') << "what crashed is not tried again";
        EXPECT_EQ(folder.names(), std::vector<std::string>{"state.json"});
        quit();
    }
    missing = "C";
    relaunch();
    EXPECT_EQ(playing(), '-') << "nothing else plays in its place";
    play('A');
    controller->stop();
    quit();
    EXPECT_EQ(stored().resumeTrackID, std::nullopt);
    missing.clear();
}

TEST_F(ControllerLibrary, DoesNotSaveForAPositionThatNobodyWillUse) {
    launch();
    play('C');
    advance(2.5);
    folder.write("state.json", "not written since");
    advance(12);
    EXPECT_EQ(*readFile(folder.path("state.json")), "not written since");
    controller->changeSettings([](AppSettings& settings) { settings.resumeOnStartup = true; });
    advance(6);
    EXPECT_GT(stored().resumePosition.value_or(0), 10);
}

TEST_F(ControllerLibrary, TellsOnceWhenEverythingIsAsItWillBe) {
    using P = PlayerController;
    launch();
    play('B');
    select("BC");
    std::string told;
    QObject::connect(controller.get(), &P::tracksEdited, [&](const QUuid&, const TracksEdit& edit) {
        told += 'e';
        EXPECT_EQ(edit.ranges, (std::vector<RowRange>{{1, 2}}));
        EXPECT_EQ(shown(), "AD");
        EXPECT_TRUE(controller->selection().isEmpty() && controller->removalUndoAvailable());
    });
    QObject::connect(controller.get(), &P::selectionChanged, [&] { told += 's'; });
    QObject::connect(controller.get(), &P::undoChanged, [&] { told += 'u'; });
    QObject::connect(controller.get(), &P::playingTrackChanged, [&] { told += 'p'; });
    controller->removeSelected();
    EXPECT_EQ(std::exchange(told, {}), "esu");
    controller->nextTrack();
    advance(0.1);
    EXPECT_EQ(told, "p");
}
