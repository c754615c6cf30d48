#include "player/ControllerFixture.h"

using namespace quorel;
using namespace quorel::test;

namespace {

using ControllerSettings = ControllerTest;

} // namespace

TEST_F(ControllerSettings, VolumeAndMute) {
    saved.settings.loudness = true;
    launch();
    EXPECT_EQ(engine->volume, 0.5);
    EXPECT_EQ(engine->loudnessAt, 0.5);
    const std::tuple<const char*, std::function<void(PlayerController&)>, double, double, bool>
        kCases[] = {
            {"muted", [](PlayerController& p) { p.toggleMute(); }, 0, 0.5, true},
            {"down to nothing stays so", [](PlayerController& p) { p.setVolume(0); }, 0, 0, true},
            {"raised", [](PlayerController& p) { p.setVolume(0.3); }, 0.3, 0.3, false},
            {"too far", [](PlayerController& p) { p.setVolume(7); }, 1, 1, false},
            {"no number", [](PlayerController& p) { p.setVolume(std::nan("")); }, 0, 0, false},
        };
    for (const auto& [what, change, heard, tone, muted] : kCases) {
        change(*controller);
        EXPECT_EQ(engine->volume, heard) << what;
        EXPECT_EQ(engine->loudnessAt, tone) << what;
        EXPECT_EQ(controller->settings().isMuted, muted) << what;
    }
    controller->setPan(-3);
    EXPECT_EQ(engine->pan, -1);
}

TEST_F(ControllerSettings, EqualizerPresets) {
    launch();
    const auto preset = [this] { return controller->settings().eqPreset.toStdString(); };
    for (const int band : {0, -1, 10})
        controller->setEQGain(band, 6);
    EXPECT_EQ(engine->eqGains[0], 6);
    EXPECT_EQ(controller->settings().eqGains.size(), kEqBands);
    for (const char* refused : {"  flat ", " \n"})
        EXPECT_FALSE(controller->saveCustomEQPreset(QLatin1String(refused)));
    EXPECT_TRUE(controller->saveCustomEQPreset(QStringLiteral(" Mine\n")));
    EXPECT_TRUE(controller->isCurrentEQPresetCustom());

    controller->applyEQPreset(QStringLiteral("bass"));
    EXPECT_EQ(engine->eqGains[0], 7);
    controller->applyEQPreset(QStringLiteral("unheard of"));
    EXPECT_EQ(preset(), "bass");
    controller->saveCustomEQPreset(QStringLiteral("Other"));
    controller->deleteCustomEQPreset(QStringLiteral("Mine"));
    EXPECT_EQ(preset(), "Other");
}

TEST_F(ControllerSettings, StoredValuesOutOfRangeAreLimitedInUseOnly) {
    saved.settings.volume = 3;
    saved.settings.eqGains = {99, -99};
    saved.settings.uiScale = 40;
    launch();
    EXPECT_EQ(engine->volume, 1);
    EXPECT_EQ(engine->eqGains[1], -12);
    controller->toggleShuffle();
    quit();
    saved.settings.shuffle = true;
    EXPECT_EQ(stored().settings, saved.settings);
}

TEST_F(ControllerSettings, LoudnessIsTheTracksOrItsFoldersOrLow) {
    saved.settings.normalize = true;
    saved.playlists.front().tracks[1].peakLinear = 0.4;
    saved.playlists.front().tracks[1].rmsLinear = 0.0792; // -22 dBFS, to be raised by 6 dB
    launch();
    play('B');
    EXPECT_NEAR(engine->normGain, 2, 0.01);
    play('C');
    EXPECT_NEAR(engine->normGain, 2, 0.01) << "the folder's median";
    controller->changeSettings([](AppSettings& s) { s.normalize = false; });
    EXPECT_EQ(engine->normGain, 1);
    saved.playlists.front().tracks[1].rmsLinear.reset();
    launch();
    play('C');
    EXPECT_NEAR(engine->normGain, 0.501, 1e-3) << "6 dB down while nothing is known";
}

TEST_F(ControllerSettings, TheWindowFollows) {
    NotedWindow window;
    saved.settings.uiScale = 9;
    launch();
    controller->attachWindow(&window);
    EXPECT_EQ(window.takeLog(), "15Ptw");
    const AppSettings before = controller->settings();
    controller->setUIScale(0.1);
    controller->togglePlaylistVisible();
    controller->fullScreenChanged(true);
    controller->togglePlaylistVisible(); // not in full screen
    controller->changeSettings([](AppSettings& s) {
        s.alwaysOnTop = true;
        s.volume = 0.1;
        s.fadeStopOn = true;
    });
    EXPECT_EQ(window.takeLog(), "5pT");
    controller->restoreSettings(before);
    EXPECT_EQ(window.log, "15t");
    EXPECT_FALSE(controller->settings().showPlaylist) << "not a field of the settings window";
    EXPECT_EQ(controller->settings().volume, 0.1);
    EXPECT_FALSE(controller->settings().fadeStopOn);
    controller->attachWindow(nullptr);
}
