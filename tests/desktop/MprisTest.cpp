#include "desktop/Mpris.h"

#include "desktop/MprisMetadata.h"
#include "desktop/SessionBus.h"
#include "model/FileUri.h"
#include "player/ControllerFixture.h"

#include <gmock/gmock.h>

using namespace quorel;
using namespace quorel::test;
using testing::ElementsAre;

namespace {

/// Hears what the player tells.
class Ear : public QObject {
    Q_OBJECT

  public:
    explicit Ear(SessionBus& bus) {
        const auto hear = [&](const QString& interface, const char* name, const char* slot) {
            EXPECT_TRUE(bus.client.connect(bus.service, bus.path, interface,
                                           QString::fromLatin1(name), this, slot));
        };
        hear(bus.properties, "PropertiesChanged",
             SLOT(propertiesChanged(QString, QVariantMap, QStringList)));
        hear(bus.player, "Seeked", SLOT(seeked(qlonglong)));
    }

    std::vector<std::string> takeKeys() { return std::exchange(keys, {}); }

    std::vector<std::string> keys; ///< of each notice, with commas
    QVariantMap last;
    std::vector<qlonglong> jumps;

  public Q_SLOTS: // NOLINT(readability-redundant-access-specifiers)
    void propertiesChanged(const QString&, const QVariantMap& changed, const QStringList& others) {
        EXPECT_TRUE(others.isEmpty());
        keys.push_back(QStringList(changed.keys()).join(u',').toStdString());
        last = changed;
    }
    void seeked(qlonglong position) { jumps.push_back(position); }
};

class MprisTest : public ControllerTest {
  protected:
    MprisTest() { mpris->start(bus.connection("player")); }

    void seekBy(qlonglong offset) { bus.call(bus.player, "Seek", {offset}); }
    void setPosition(char track, qlonglong position) {
        bus.call(bus.player, "SetPosition",
                 {QVariant::fromValue(mprisTrackId(idOf(track))), position});
    }
    QVariantMap metadata() {
        return qdbus_cast<QVariantMap>(bus.get(bus.player, "Metadata").value<QDBusArgument>());
    }
    std::string status() { return bus.get(bus.player, "PlaybackStatus").toString().toStdString(); }

    SessionBus bus;
    int quits = 0;
    std::unique_ptr<Mpris> mpris = std::make_unique<Mpris>(launch(), [this] { ++quits; });
};

} // namespace

TEST_F(MprisTest, playerctlControlsThePlayer) {
    struct Step {
        const char* arguments;
        const char* query;
        const char* answer;
        char playing;
    };
    const Step steps[] = {
        {"status", "metadata xesam:title", "No player could handle this command", '-'},
        {"play", "status", "Playing", 'A'},
        {"play", "status", "Playing", 'A'},
        {"pause", "status", "Paused", 'A'},
        {"pause", "status", "Paused", 'A'},
        {"play-pause", "status", "Playing", 'A'},
        {"next", "metadata xesam:title", "B", 'B'},
        {"next", "metadata mpris:length", "20000000", 'C'},
        {"previous", "metadata xesam:url", "file:///B", 'B'},
        {"loop Track", "loop", "Track", 'B'},
        {"loop Playlist", "loop", "Playlist", 'B'},
        {"loop None", "loop", "None", 'B'},
        {"shuffle On", "shuffle", "On", 'B'},
        {"shuffle Off", "shuffle", "Off", 'B'},
        {"volume 0.25", "volume", "0.250000", 'B'},
        {"volume 3", "volume", "1.000000", 'B'},
        {"pause", "status", "Paused", 'B'}, // for it counts on by itself
        {"position 10", "position", "10.000000", 'B'},
        {"position 5+", "position", "15.000000", 'B'},
        {"position 16-", "position", "0.000000", 'B'},
        {"stop", "status", "Stopped", '-'},
    };
    for (const Step& step : steps) {
        bus.playerctl(step.arguments);
        advance(0.1);
        EXPECT_EQ(bus.playerctl(step.query), step.answer) << step.arguments;
        EXPECT_EQ(playing(), step.playing) << step.arguments;
    }
}

TEST_F(MprisTest, everyPropertyIsOfItsType) {
    play('A');
    const std::tuple<const QString&, const char*, const char*> cases[] = {
        {bus.root, "CanQuit CanRaise CanSetFullscreen HasTrackList Fullscreen", "bool"},
        {bus.root, "Identity DesktopEntry", "QString"},
        {bus.root, "SupportedUriSchemes SupportedMimeTypes", "QStringList"},
        {bus.player, "PlaybackStatus LoopStatus", "QString"},
        {bus.player, "Rate MinimumRate MaximumRate Volume", "double"},
        {bus.player, "Metadata", "QDBusArgument"},
        {bus.player, "Position", "qlonglong"},
        {bus.player, "Shuffle CanGoNext CanGoPrevious CanPlay CanPause CanSeek CanControl", "bool"},
    };
    for (const auto& [interface, properties, type] : cases)
        for (const QByteArray& property : QByteArray(properties).split(' '))
            EXPECT_STREQ(bus.get(interface, property.constData()).typeName(), type)
                << property.constData();
    EXPECT_STREQ(metadata().value(QStringLiteral("mpris:length")).typeName(), "qlonglong");
    for (const char* can : {"CanGoNext", "CanGoPrevious", "CanPause", "CanSeek"})
        EXPECT_EQ(bus.get(bus.player, can), QVariant(true)) << can;

    controller->stop();
    EXPECT_EQ(metadata().size(), 1);
    EXPECT_EQ(bus.get(bus.player, "CanSeek"), QVariant(false));
    EXPECT_EQ(bus.get(bus.player, "CanPlay"), QVariant(true));
    controller->clearActivePlaylist();
    EXPECT_EQ(bus.get(bus.player, "CanPlay"), QVariant(false));
}

TEST(MprisMetadata, saysWhatTheTagsSay) {
    Track track = Track::fromPath(pathFromBytes("/m/\xE9.mp3"));
    track.artist = QStringLiteral("Ann");
    track.title = QStringLiteral("One");
    track.albumArtist = QStringLiteral("Various");
    track.album = QStringLiteral("Album");
    track.genre = QStringLiteral("Jazz");
    track.trackNumber = 3;
    track.discNumber = 1LL << 40;
    const QVariantMap expected = {
        {QStringLiteral("mpris:trackid"), QVariant::fromValue(mprisTrackId(track.id))},
        {QStringLiteral("mpris:length"), 1500000LL},
        {QStringLiteral("xesam:title"), track.title},
        {QStringLiteral("xesam:artist"), QStringList(track.artist)},
        {QStringLiteral("xesam:albumArtist"), QStringList(*track.albumArtist)},
        {QStringLiteral("xesam:album"), *track.album},
        {QStringLiteral("xesam:genre"), QStringList(*track.genre)},
        {QStringLiteral("xesam:trackNumber"), 3},
        {QStringLiteral("xesam:url"), QStringLiteral("file:///m/%E9.mp3")},
    };
    EXPECT_EQ(mprisMetadata(&track, 1.5), expected);
    EXPECT_EQ(mprisMetadata(nullptr, 0).value(QStringLiteral("mpris:trackid")),
              QVariant::fromValue(
                  QDBusObjectPath(QStringLiteral("/org/mpris/MediaPlayer2/TrackList/NoTrack"))));
}

TEST_F(MprisTest, tellsOnceATurnWhatHasChanged) {
    Ear ear(bus);
    const auto told = [&] {
        EXPECT_TRUE(spinUntil([&] { return !ear.keys.empty(); }));
        return ear.takeKeys();
    };
    play('A');
    EXPECT_THAT(told(), ElementsAre("CanPause,CanSeek,Metadata,PlaybackStatus"));
    controller->setVolume(0.6);
    controller->setVolume(0.7);
    controller->toggleShuffle();
    EXPECT_THAT(told(), ElementsAre("Shuffle,Volume"));
    EXPECT_EQ(ear.last.value(QStringLiteral("Volume")), QVariant(0.7));
    EXPECT_EQ(ear.last.value(QStringLiteral("Shuffle")), QVariant(true));

    // What ends where it began, or is no concern of anyone outside, is not told.
    controller->toggleShuffle();
    controller->toggleShuffle();
    controller->setPan(0.5);
    controller->setPlaybackMode(PlaybackMode::StopAfter);
    advance(2);
    bus.set(bus.player, "LoopStatus", QStringLiteral("None"));
    EXPECT_EQ(controller->settings().pbMode, PlaybackMode::StopAfter);
    bus.set(bus.player, "LoopStatus", QStringLiteral("Playlist"));
    EXPECT_THAT(told(), ElementsAre("LoopStatus"));
    EXPECT_EQ(controller->settings().pbMode, PlaybackMode::All);
    bus.set(bus.player, "LoopStatus", QStringLiteral("None"));
    EXPECT_EQ(controller->settings().pbMode, PlaybackMode::Normal);
}

TEST_F(MprisTest, saysSeekedOnceForEachJumpAndNeverElse) {
    Ear ear(bus);
    play('A');
    advance(1);
    const auto jumps = [&] {
        EXPECT_TRUE(spinUntil([&] { return !ear.jumps.empty(); }));
        return std::exchange(ear.jumps, {});
    };
    controller->seek(5);
    EXPECT_THAT(jumps(), ElementsAre(5'000'000));
    // None of these moves it; the next one does.
    setPosition('B', 7'000'000);
    setPosition('A', -1);
    setPosition('A', 20'000'001);
    advance(1);
    setPosition('A', 7'000'000);
    EXPECT_THAT(jumps(), ElementsAre(7'000'000));
    seekBy(-2'500'000);
    EXPECT_THAT(jumps(), ElementsAre(4'500'000));
    seekBy(std::numeric_limits<qlonglong>::min());
    EXPECT_THAT(jumps(), ElementsAre(0));
    seekBy(std::numeric_limits<qlonglong>::max());
    advance(0.1);
    EXPECT_EQ(playing(), 'B');
    controller->pause();
    controller->selectOnly(idOf('D'));
    bus.call(bus.player, "Play", {});
    settle();
    EXPECT_EQ(playing(), 'B') << "a selection elsewhere";
    EXPECT_EQ(status(), "Playing");
    EXPECT_TRUE(ear.jumps.empty());
}

TEST_F(MprisTest, theProgramIsRaisedFilledQuitAndGivenFiles) {
    NotedWindow window;
    controller->attachWindow(&window);
    window.takeLog();
    Ear ear(bus);
    bus.call(bus.root, "Raise", {});
    bus.set(bus.root, "Fullscreen", true);
    EXPECT_EQ(window.log, "rF");
    controller->fullScreenChanged(true);
    EXPECT_TRUE(spinUntil([&] { return !ear.keys.empty(); }));
    EXPECT_THAT(ear.keys, ElementsAre("Fullscreen"));

    const QByteArray file = folder.write("new \xE9.mp3");
    bus.call(bus.player, "OpenUri", {QStringLiteral("http://localhost/a.mp3")});
    bus.call(bus.player, "OpenUri", {fileUri(pathFromBytes(file))});
    settle();
    ASSERT_EQ(controller->activePlaylist().tracks.size(), 5);
    EXPECT_EQ(pathToBytes(controller->activePlaylist().tracks.last().path), file);
    EXPECT_EQ(status(), "Playing");
    EXPECT_EQ(controller->playingTrackID(), controller->activePlaylist().tracks.last().id);

    bus.call(bus.root, "Quit", {});
    EXPECT_EQ(quits, 1);
    controller->attachWindow(nullptr);
}

TEST_F(MprisTest, anotherPlayerMayHaveTheName) {
    bus.service += QStringLiteral(".instance%1").arg(::getpid());
    auto other = std::make_unique<Mpris>(*controller, [] {});
    other->start(bus.connection("other"));
    EXPECT_EQ(bus.get(bus.root, "Identity"), QVariant(QStringLiteral("Quorel")));
    other.reset();
    EXPECT_FALSE(bus.get(bus.root, "Identity").isValid());
}

TEST_F(ControllerTest, withoutABusNothingIsSaidOrWaitedFor) {
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere/bus");
    application();
    Mpris mpris(launch(), [] {});
    testing::internal::CaptureStderr();
    const auto begin = std::chrono::steady_clock::now();
    mpris.start();
    const auto waited = std::chrono::steady_clock::now() - begin;
    controller->setVolume(0.1);
    QCoreApplication::processEvents();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_LT(waited, std::chrono::seconds(1)) << "a bus is waited for 25 seconds";
}

#include "MprisTest.moc"
