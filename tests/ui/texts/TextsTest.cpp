#include "ui/texts/Texts.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace quorel;

namespace {

Track track(const char* path, const char* title = "", const char* artist = "") {
    Track track;
    track.path = QString::fromUtf8(path);
    track.title = QString::fromUtf8(title);
    track.artist = QString::fromUtf8(artist);
    return track;
}

} // namespace

TEST(Texts, TitleOfATrack) {
    const struct {
        Track track;
        double duration;
        const char* label;
        const char* marquee;
    } kCases[] = {
        {track("/m/a.mp3", "Blue", "Ann"), 61, "Ann - Blue", "Ann - Blue (1:01)"},
        {track("/m/a.mp3", "Blue"), 0, "Blue", "Blue"},
        {track("/m/a b.mp3", "", "Ann"), 3600, "Ann - a b", "Ann - a b (1:00:00)"},
        {track("/m/.flac"), 0.4, ".flac", ".flac (0:00)"},
        {track("/m/a.mp3", "Two\nlines\r\n", "A\tnn\x1b"), 0, "A nn  - Two lines  ",
         "A nn  - Two lines  "},
        {track("/m/a.mp3", "שלום"), 9, "שלום", "\u2068שלום\u2069 (0:09)"},
        {track("/m/a.mp3", "a \u202e b"), 9, "a \u202e b", "\u2068a \u202e b\u2069 (0:09)"},
    };
    for (const auto& row : kCases) {
        EXPECT_EQ(rowLabel(row.track).toStdString(), row.label);
        EXPECT_EQ(marqueeText(&row.track, row.duration).toStdString(), row.marquee);
    }
    EXPECT_EQ(marqueeText(nullptr, 9).toStdString(), "Quorel");
}

TEST(Texts, Time) {
    const struct {
        bool isLoaded;
        bool remaining;
        double time;
        double duration;
        const char* text;
    } kCases[] = {
        {false, false, 5, 9, "0:00"},    {false, true, 5, 9, "0:00"},
        {true, false, 65.4, 90, "1:05"}, {true, true, 65, 90, "-0:25"},
        {true, true, 91, 90, "-0:00"},   {true, false, 0, 0, "0:00"},

    };
    for (const auto& row : kCases)
        EXPECT_EQ(timeText(row.isLoaded, row.remaining, row.time, row.duration).toStdString(),
                  row.text)
            << row.time << " of " << row.duration;
}

TEST(Texts, Format) {
    const struct {
        const char* path;
        std::optional<int> kbps;
        std::optional<int> rate;
        std::optional<int> bpm;
        const char* text;
    } kCases[] = {
        {"/m/a.mp3", 320, 44100, 128, "MP3 · 320 kbps · 44.1 kHz · 128 BPM"},
        {"/m/a.Flac", {}, 48000, 0, "FLAC · 48 kHz"},
        {"/m/a", {}, 11025, 1, "11.0 kHz · 1 BPM"},
        {"/m/a.b/c", {}, {}, {}, ""},
    };
    for (const auto& row : kCases) {
        Track known = track(row.path);
        known.bitrateKbps = row.kbps;
        known.sampleRateHz = row.rate;
        known.bpm = row.bpm;
        EXPECT_EQ(formatInfoText(known).toStdString(), row.text);
    }
}

TEST(Texts, Balance) {
    const std::pair<double, const char*> kCases[] = {
        {0, "C"},       {-0.004, "C"},    {0.0049, "C"},
        {0.005, "R0%"}, {-0.357, "L35%"}, {0.3 - 0.05 + 0.04, "R29%"},
        {1, "R100%"},   {-1, "L100%"},    {std::nan(""), "C"},
    };
    for (const auto& [pan, text] : kCases)
        EXPECT_EQ(panText(pan).toStdString(), text) << pan;
}

TEST(Texts, Gain) {
    const std::pair<double, const char*> kCases[] = {
        {0, "0"},     {0.4, "0"},  {0.5, "+1"},  {-0.4, "0"},         {-0.5, "-1"},
        {-2.6, "-3"}, {12, "+12"}, {-12, "-12"}, {std::nan(""), "0"},
    };
    for (const auto& [gain, text] : kCases)
        EXPECT_EQ(gainText({gain}, 0).toStdString(), text) << gain;
    EXPECT_EQ(gainText({3, 3}, 2).toStdString(), "0");
    EXPECT_EQ(gainText({3, 3}, -1).toStdString(), "0");
}

TEST(Texts, FlagsOfTheStatusLine) {
    using S = AppSettings;
    const std::tuple<bool S::*, CharacterFX, PlaybackMode, std::string> kCases[] = {
        {&S::fadePlayOn, CharacterFX::Tape, PlaybackMode::All, "TAPE LOUD REPEAT "},
        {&S::fadePauseOn, CharacterFX::Vinyl, PlaybackMode::One, "VINYL LOUD REPEAT-1 "},
        {&S::fadeStopOn, CharacterFX::Off, PlaybackMode::StopAfter, "LOUD AUTO-STOP "},
        {&S::fadeChangeOn, CharacterFX::Off, PlaybackMode::Normal, "LOUD "},
    };
    for (const auto& [fade, character, mode, flags] : kCases) {
        S all;
        all.trimSilence = all.normalize = all.compOn = all.loudness = all.shuffle = true;
        all.*fade = true;
        all.charFx = character;
        all.pbMode = mode;
        EXPECT_EQ(statusFlags(all).join(u' ').toStdString(),
                  "GAPLESS TRIM FADE NORM COMP " + flags + "SHUFFLE");
    }
    S none;
    none.gapless = false;
    EXPECT_EQ(statusFlags(none), QStringList());
}

TEST(Texts, TrackCount) {
    for (const auto& [count, text] : {std::pair(0, "0 tracks"), {1, "1 track"}, {12, "12 tracks"}})
        EXPECT_EQ(trackCountText(count).toStdString(), text);
}
