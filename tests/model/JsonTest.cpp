#include "model/Json.h"

#include "model/PersistedState.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>

using namespace quorel;

namespace {

const QByteArray kId = "0F8FAD5B-D9CB-469F-A165-70867728950E";
const QByteArray kOtherId = "7C9E6679-7425-40DE-944B-E07FC1F90AE7";

QUuid uuid(const QByteArray& text) {
    return QUuid::fromString(QLatin1StringView(text));
}

/// A track's object with the required keys and these beside them.
QByteArray trackWith(const QByteArray& more) {
    return R"({"id":")" + kId + R"(","path":"/p","artist":"","title":"T")" + more + "}";
}

Track fullTrack() {
    return {uuid(kId),
            QStringLiteral("/m/ä \"b\".mp3"),
            QStringLiteral("Artist"),
            QStringLiteral("Title"),
            215.4,
            QStringLiteral("Album"),
            QStringLiteral("Band"),
            QStringLiteral("Jazz"),
            QStringLiteral("1999-01"),
            3,
            12,
            1,
            2,
            QStringLiteral("Composer"),
            QStringLiteral("A\\B\n"),
            320,
            44100,
            128,
            0.98,
            0.125,
            0,
            214.9};
}

/// Every double but the ones that JSON cannot hold is as likely as any other.
double anyDouble(std::mt19937_64& random) {
    const auto value = std::bit_cast<double>(random());
    return std::isfinite(value) ? value : std::numeric_limits<double>::denorm_min();
}

QString anyText(std::mt19937_64& random) {
    QString text;
    for (auto left = random() % 40; left > 0; --left) {
        const char32_t planes[] = {0x20, 0x80, 0x800, 0xD800, 0x110000};
        const char32_t code = random() % planes[random() % 5];
        text += QChar::isSurrogate(code) ? QString() : QString::fromUcs4(&code, 1);
    }
    return text;
}

Track anyTrack(std::mt19937_64& random) {
    Track track = fullTrack();
    track.id = QUuid::createUuid();
    for (QString* text : {&track.path, &track.artist, &track.title, &*track.album, &*track.comment})
        *text = anyText(random);
    for (auto* number : {&track.duration, &track.peakLinear, &track.rmsLinear, &track.trimEnd})
        *number = anyDouble(random);
    for (auto* number : {&track.trackNumber, &track.bpm, &track.bitrateKbps})
        *number = static_cast<qint64>(random()) >> random() % 64;
    if (random() % 2 == 0)
        track.album.reset();
    if (random() % 2 == 0)
        track.trimStart.reset();
    return track;
}

PersistedState anyState(std::mt19937_64& random) {
    PersistedState state;
    for (int i = 0; i < 3; ++i) {
        state.playlists += Playlist::named(anyText(random));
        while (random() % 8 != 0)
            state.playlists.last().tracks += anyTrack(random);
    }
    state.activePlaylistID = state.playlists.first().id;
    state.resumeTrackID = QUuid();
    state.resumePosition = anyDouble(random);
    AppSettings& settings = state.settings;
    settings.volume = anyDouble(random);
    settings.pbMode = kAllCases<PlaybackMode>[random() % 4];
    settings.tapeType = kAllCases<TapeType>[random() % 3];
    settings.gapless = random() % 2 == 0;
    settings.eqGains = {anyDouble(random), anyDouble(random)};
    settings.eqPreset = anyText(random);
    settings.customEQPresets = {{anyText(random), {}}, {QString(), {1, anyDouble(random)}}};
    settings.outputDeviceUID = anyText(random);
    return state;
}

struct Case {
    QByteArray json;
    bool decodes;
};

template <class Record>
void expect(const std::vector<Case>& cases) {
    for (const Case& c : cases)
        EXPECT_EQ(fromJson<Record>(c.json).has_value(), c.decodes) << c.json.left(300).constData();
}

} // namespace

TEST(Json, ofATrackHoldsEveryField) {
    EXPECT_EQ(toJson(fullTrack()),
              R"({"id":"0F8FAD5B-D9CB-469F-A165-70867728950E","path":"/m/ä \"b\".mp3",)"
              R"("artist":"Artist","title":"Title","duration":215.4,"album":"Album",)"
              R"("albumArtist":"Band","genre":"Jazz","year":"1999-01","trackNumber":3,)"
              R"("trackTotal":12,"discNumber":1,"discTotal":2,"composer":"Composer",)"
              R"("comment":"A\\B\u000A","bitrateKbps":320,"sampleRateHz":44100,"bpm":128,)"
              R"("peakLinear":0.98,"rmsLinear":0.125,"trimStart":0,"trimEnd":214.9})");
    Track bare;
    bare.id = uuid(kId);
    bare.path = QStringLiteral("/p");
    bare.title = QStringLiteral("T");
    EXPECT_EQ(toJson(bare), trackWith(""));
    EXPECT_EQ(fromJson<Track>(trackWith("")), bare);
}

TEST(Json, ofFreshSettingsHoldsEveryDefault) {
    const QByteArray text =
        R"({"volume":0.8,"pan":0,"isMuted":false,"pbMode":"normal","shuffle":false,"eqOn":false,)"
        R"("eqGains":[0,0,0,0,0,0,0,0,0,0],"eqPreset":"flat","customEQPresets":{},)"
        R"("showRemainingTime":false,"playlistFontSize":12.5,"uiScale":1,"alwaysOnTop":false,)"
        R"("resumeOnStartup":false,"quitOnClose":false,"visualization":"vu","ledBrightness":0.8,)"
        R"("showWordmarkIcon":false,"showPlaylist":true,"gapless":true,"trimSilence":false,)"
        R"("trimThresholdDb":-60,"trimMaxSec":5,"fadePlayOn":false,"fadePlayMs":250,)"
        R"("fadePauseOn":false,"fadePauseMs":250,"fadeStopOn":false,"fadeStopMs":250,)"
        R"("fadeChangeOn":false,"fadeChangeMs":400,"normalize":false,"compOn":false,)"
        R"("compAmount":40,"compPreset":"warm","charFx":"off","charIntensity":40,)"
        R"("vinylCrackle":50,"tapeType":"chrome","tapeCompression":40,"tapeWear":0,)"
        R"("mechNoise":false,"mechNoiseLevel":30,"loudness":false,"loudnessStrength":"strong"})";
    EXPECT_EQ(toJson(AppSettings()), text);
    EXPECT_EQ(fromJson<AppSettings>("{}"), AppSettings());
    AppSettings quieter;
    quieter.volume = 0.5;
    EXPECT_EQ(fromJson<AppSettings>(R"({"volume":0.5})"), quieter);
}

TEST(Json, readsBackWhatItWrote) {
    std::mt19937_64 random(1);
    for (int i = 0; i < 100; ++i) {
        const PersistedState state = anyState(random);
        const QByteArray json = toJson(state);
        ASSERT_EQ(fromJson<PersistedState>(json), state) << json.constData();
    }
}

TEST(Json, writesWhatItHasNoWordsForAsTheNearestThing) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    AppSettings settings;
    settings.volume = std::nan("");
    settings.eqGains = {1, -kInfinity, 3};
    AppSettings expected;
    expected.eqGains = {1, 0, 3};
    EXPECT_EQ(fromJson<AppSettings>(toJson(settings)), expected);

    Track track = fullTrack();
    track.duration = kInfinity;
    track.title = QStringLiteral("a") + QChar(0xDC80) + QStringLiteral("b") + QChar(0xD83C);
    Track readBack = fullTrack();
    readBack.duration.reset();
    readBack.title = QStringLiteral(u"a\uFFFDb\uFFFD");
    EXPECT_EQ(fromJson<Track>(toJson(track)), readBack);
}

TEST(Json, ofATrackIsReadStrictly) {
    std::vector<Case> cases = {
        {R"(,"bpm":120)", true},
        {R"(,"bpm":null)", true},
        {R"(,"bpm":3.0)", true},
        {R"(,"bpm":12e1)", true},
        {R"(,"bpm":3.5)", false},
        {R"(,"bpm":"120")", false},
        {R"(,"bpm":true)", false},
        {R"(,"bpm":-9223372036854775808)", true},
        {R"(,"bpm":9223372036854775807)", true},
        {R"(,"bpm":9223372036854775808)", false},
        {R"(,"bpm":-9223372036854775809)", false},
        {R"(,"bpm":1e30)", false},
        {R"(,"bpm":[1])", false},
        {R"(,"duration":3)", true},
        {R"(,"duration":100000000000000000000)", true},
        {R"(,"duration":-0.0)", true},
        {R"(,"duration":1e400)", false},
        {R"(,"duration":NaN)", false},
        {R"(,"duration":.5)", false},
        {R"(,"duration":01)", false},
        {R"(,"duration":"3")", false},
        {R"(,"duration":false)", false},
        {R"(,"album":null)", true},
        {R"(,"album":7)", false},
        {R"(,"album":{})", false},
        {R"(,"album":"\u00e4\ud83c\udfb5\u0000")", true},
        {R"(,"album":"\ud83c")", false},
        {R"(,"album":"\x")", false},
        {",\"album\":\"\x1f\"", false},
        {",\"album\":\"\xff\"", false},
        {",\"album\":\"\xed\xa0\x80\"", false},
        {R"(,"album":"a","album":"b")", false},
        {R"(,"title":"again")", false},
        {R"(,"unknown":{"title":[1,{"a":null}],"b":"x"},"Album":3)", true},
        {R"(,"unknown":)" + QByteArray(60, '[') + QByteArray(60, ']'), true},
        {R"(,"unknown":)" + QByteArray(1'000'000, '[') + QByteArray(1'000'000, ']'), false},
        {R"(,"unknown":)" + QByteArray("{\"a\":").repeated(1'000'000), false},
        {R"(,"unknown":tru)", false},
        {R"(,)", false},
    };
    for (Case& c : cases)
        c.json = trackWith(c.json);
    const QByteArray kRequired[] = {R"("id":")" + kId + '"', R"("path":"/p")", R"("artist":"")",
                                    R"("title":"T")"};
    for (const QByteArray& key : kRequired) {
        cases.push_back({trackWith(R"(,"bpm":1)").replace(key + ',', ""), false});
        const QByteArray null = key.left(key.indexOf(':')) + ":null";
        cases.push_back({trackWith("").replace(key, null), false});
    }
    for (const char* id :
         {"", "0F8FAD5B", "{0F8FAD5B-D9CB-469F-A165-70867728950E}",
          "0F8FAD5BD9CB469FA16570867728950E", "0F8FAD5B-D9CB-469F-A165-70867728950G",
          "0F8FAD5B-D9CB-469FA-165-70867728950E"})
        cases.push_back({trackWith("").replace(kId, id), false});
    expect<Track>(cases);
    EXPECT_EQ(fromJson<Track>(trackWith("").replace(kId, kId.toLower())).value().id, uuid(kId));
}

TEST(Json, ofSettingsAndStateIsReadStrictly) {
    expect<AppSettings>({
        {R"( { "volume" : 1 } )", true},
        {R"({"pbMode":"repeat"})", false},
        {R"({"pbMode":"All"})", false},
        {R"({"pbMode":1})", false},
        {R"({"compPreset":null})", false},
        {R"({"volume":null})", false},
        {R"({"isMuted":0})", false},
        {R"({"eqGains":[]})", true},
        {R"({"eqGains":[1,null]})", false},
        {R"({"eqGains":{"0":1}})", false},
        {R"({"customEQPresets":{"":[1],"a":[]}})", true},
        {R"({"customEQPresets":{"a":[1],"a":[2]}})", false},
        {R"({"customEQPresets":{"a":1}})", false},
        {R"({"customEQPresets":[]})", false},
        {R"({"outputDeviceUID":null})", true},
        {R"({"volume":1}{})", false},
        {QByteArray("{}\0", 3), false},
        {QByteArray("{}\0{}", 5), false},
        {"\xEF\xBB\xBF{}", false},
        {"[]", false},
        {"null", false},
        {"", false},
        {"{", false},
    });

    const QByteArray playlist = R"({"id":")" + kOtherId + R"(","name":"P","tracks":[)";
    const QByteArray settings = R"("settings":{})";
    expect<PersistedState>({
        {R"({"playlists":[],)" + settings + "}", true},
        {R"({"playlists":[]})", false},
        {"{" + settings + "}", false},
        {R"({"playlists":null,)" + settings + "}", false},
        {R"({"playlists":[null],)" + settings + "}", false},
        {R"({"playlists":[)" + playlist + trackWith("") + "]}]," + settings + "}", true},
        {R"({"playlists":[)" + playlist + trackWith("") + "," + trackWith(R"(,"bpm":"")") + "]}]," +
             settings + "}",
         false},
        {R"({"playlists":[{"id":")" + kId + R"(","name":"P"}],)" + settings + "}", false},
        {R"({"playlists":[],"settings":{"compPreset":"loud"}})", false},
        {R"({"playlists":[],"activePlaylistID":null,)" + settings + "}", true},
        {R"({"playlists":[],"resumeTrackID":"x",)" + settings + "}", false},
    });
}

TEST(Json, damagedAnywhereIsRefusedOrReadsAsSomethingThatRoundTrips) {
    std::mt19937_64 random(7);
    const QByteArray valid = toJson(anyState(random));
    for (qsizetype size = 0; size < valid.size(); size += 1 + valid.size() / 500)
        ASSERT_FALSE(fromJson<PersistedState>(valid.left(size))) << size;
    const QByteArray kPieces = "\"\\{}[]:,0-9.eEtrufn \x1f\x80\xf4\xff";
    int decoded = 0;
    for (int i = 0; i < 3000; ++i) {
        QByteArray json = valid;
        for (auto edits = 1 + random() % 3; edits > 0; --edits) {
            const auto at = static_cast<qsizetype>(random() % static_cast<quint64>(json.size()));
            const char piece = kPieces[static_cast<qsizetype>(random() % 24)];
            switch (random() % 4) {
            case 0:
                json[at] = piece;
                break;
            case 1:
                json.insert(at, piece);
                break;
            case 2:
                json.remove(at, static_cast<qsizetype>(random() % 50));
                break;
            default:
                json.insert(at, json.mid(at / 2, 40));
            }
        }
        if (const auto state = fromJson<PersistedState>(json)) {
            ++decoded;
            ASSERT_EQ(fromJson<PersistedState>(toJson(*state)), state) << json.constData();
        }
    }
    EXPECT_GT(decoded, 100);
    EXPECT_LT(decoded, 2900);
}
