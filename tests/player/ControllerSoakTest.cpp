// Long random use of the controller: on the manual clock with an engine without sound, then with
// the real one in real time with all its threads.
#include "player/ControllerSoak.h"

#include "audio/AudioEngine.h"
#include "audio/output/NullOutput.h"
#include "core/QtClock.h"
#include "player/ControllerFixture.h"
#include "support/AudioFixtures.h"
#include "support/EventLoop.h"

using namespace quorel;
using namespace quorel::test;

namespace {

/// Uses it that often; what is in the file afterwards is what there was.
void use(std::unique_ptr<PlayerController>& player, const QString& stateFile, int times,
         quint64 seed, ControllerSoak::Surroundings surroundings) {
    auto soak = std::make_unique<ControllerSoak>(*player, std::move(surroundings), seed);
    for (int i = 0; i < times && !testing::Test::HasFailure(); ++i)
        EXPECT_TRUE(soak->step()) << "seed " << seed << ", step " << i;
    const PersistedState expected = soak->expected();
    soak.reset();
    player.reset();
    const auto stored = Persistence(stateFile).load();
    ASSERT_TRUE(stored);
    EXPECT_EQ(stored->playlists, expected.playlists);
    EXPECT_EQ(stored->activePlaylistID, expected.activePlaylistID);
    EXPECT_EQ(stored->settings, expected.settings);
}

class ControllerSoakTest : public ControllerTest, public testing::WithParamInterface<quint64> {};

} // namespace

TEST_P(ControllerSoakTest, KeepsItsInvariants) {
    missing = "V";
    odd = "e";
    QStringList files;
    const QByteArray sound = QByteArray::fromStdString(wavBytes(TestSound(9, 1, 16)));
    for (const char* name : {"1.wav", "2.wav", "Artist - track 3.wav", "é 4.wav", "10.wav",
                             "11.wav", "12.wave", "20.wave", "21.WAV", "22.wav"})
        files += pathFromBytes(folder.write(QByteArray("music/") + name, sound));
    launch();
    use(controller, stateFile(), 10'000, GetParam(),
        {files, pathFromBytes(folder.path("music")), pathFromBytes(folder.path("list.m3u8")),
         [this](double seconds) { advance(seconds); }, 8});
}

INSTANTIATE_TEST_SUITE_P(Seeds, ControllerSoakTest, testing::Values(1, 2, 3, 4));

// Short files that play, and some that do not.
TEST(SoundingSoak, RealEngineInRealTime) {
    const TestFolder folder;
    QStringList files;
    const auto write = [&](int number, const WavRecipe& recipe, const TestSound& sound) {
        files += pathFromBytes(folder.write("music/" + QByteArray::number(number) + " track.wav",
                                            QByteArray::fromStdString(wavBytes(sound, recipe))));
    };
    for (int i = 0; i < 8; ++i)
        write(i,
              {.sampleRate = i % 4 == 1 ? 48000 : 44100,
               .after = chunk("LIST", "INFO" + chunk("INAM", "Track " + std::to_string(i)))},
              TestSound(2000 + 5000 * i, 2, 16));
    write(8, {}, TestSound(9000, 1, 16));
    files += pathFromBytes(folder.write("music/broken.wav", "RIFF"));
    files += pathFromBytes(folder.path("music/missing.wav"));

    application();
    QtClock clock;
    const QString stateFile = pathFromBytes(folder.path("state.json"));
    auto player = std::make_unique<PlayerController>(
        PlayerParts{.clock = clock,
                    .engine = std::make_unique<AudioEngine>(
                        clock, std::make_unique<NullOutput>(clock), SourceWorker::Mode::Threaded),
                    .stateFile = stateFile,
                    .random = [random = std::mt19937_64(3)]() mutable { return random(); }});
    player->start(false);
    const auto pass = [&clock](double seconds) {
        const auto end = clock.now() + std::chrono::nanoseconds(std::llround(seconds * 1e9));
        spinUntil([&] { return clock.now() >= end; });
    };
    use(player, stateFile, 500, 6,
        {files, pathFromBytes(folder.path("music")), pathFromBytes(folder.path("list.m3u8")), pass,
         0.1});
}
