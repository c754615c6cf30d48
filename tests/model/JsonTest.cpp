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
    const auto text = [](const char* utf8) { return QString::fromUtf8(utf8); };
    Track t;
    std::tie(t.id, t.path, t.artist, t.title, t.duration, t.album, t.albumArtist, t.genre, t.year) =
        std::tuple(uuid(kId), text("/m/ä \"b\".mp3"), text("Artist"), text("Title"), 215.4,
                   text("Album"), text("Band"), text("Jazz"), text("1999-01"));
    std::tie(t.trackNumber, t.trackTotal, t.discNumber, t.discTotal, t.composer, t.comment) =
        std::tuple(3, 12, 1, 2, text("Composer"), text("A\\B\n"));
    std::tie(t.bitrateKbps, t.sampleRateHz, t.bpm, t.peakLinear, t.rmsLinear, t.trimStart,
             t.trimEnd) = std::tuple(320, 44100, 128, 0.98, 0.125, 0, 214.9);
    return t;
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

template <class Record>
void expect(bool decodes, const QByteArrayList& texts) {
    for (const QByteArray& text : texts)
        EXPECT_EQ(fromJson<Record>(text).has_value(), decodes) << text.left(300).constData();
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
    const auto expectWith = [](bool decodes, QByteArrayList fields) {
        for (QByteArray& field : fields)
            field = trackWith(',' + field);
        expect<Track>(decodes, fields);
    };
    expectWith(true,
               {R"("bpm":120)", R"("bpm":null)", R"("bpm":3.0)", R"("bpm":12e1)",
                R"("bpm":-9223372036854775808)", R"("bpm":9223372036854775807)", R"("duration":3)",
                R"("duration":100000000000000000000)", R"("duration":-0.0)", R"("album":null)",
                R"("album":"\u00e4\ud83c\udfb5\u0000")",
                R"("unknown":{"title":[1,{"a":null}],"b":"x"},"Album":3)",
                R"("unknown":)" + QByteArray(60, '[') + QByteArray(60, ']')});
    expectWith(false, {R"("bpm":3.5)",
                       R"("bpm":"120")",
                       R"("bpm":true)",
                       R"("bpm":[1])",
                       R"("bpm":9223372036854775808)",
                       R"("bpm":-9223372036854775809)",
                       R"("bpm":1e30)",
                       R"("duration":1e400)",
                       R"("duration":NaN)",
                       R"("duration":.5)",
                       R"("duration":01)",
                       R"("duration":"3")",
                       R"("duration":false)",
                       R"("album":7)",
                       R"("album":{})",
                       R"("album":"\ud83c")",
                       R"("album":"\x")",
                       "\"album\":\"\x1f\"",
                       "\"album\":\"\xff\"",
                       "\"album\":\"\xed\xa0\x80\"",
                       R"("album":"a","album":"b")",
                       R"("title":"again")",
                       R"("unknown":tru)",
                       "",
                       R"("unknown":)" + QByteArray(1'000'000, '[') + QByteArray(1'000'000, ']'),
                       R"("unknown":)" + QByteArray("{\"a\":").repeated(1'000'000)});
    for (const QByteArray& key : {R"("id":")" + kId + '"', QByteArray(R"("path":"/p")"),
                                  QByteArray(R"("artist":"")"), QByteArray(R"("title":"T")")}) {
        const QByteArray null = key.left(key.indexOf(':')) + ":null";
        expect<Track>(false, {trackWith(R"(,"bpm":1)").replace(key + ',', ""),
                              trackWith("").replace(key, null)});
    }
    for (const char* id :
         {"", "0F8FAD5B", "{0F8FAD5B-D9CB-469F-A165-70867728950E}",
          "0F8FAD5BD9CB469FA16570867728950E", "0F8FAD5B-D9CB-469F-A165-70867728950G",
          "0F8FAD5B-D9CB-469FA-165-70867728950E"})
        expect<Track>(false, {trackWith("").replace(kId, id)});
    EXPECT_EQ(fromJson<Track>(trackWith("").replace(kId, kId.toLower())).value().id, uuid(kId));
}

TEST(Json, ofSettingsAndStateIsReadStrictly) {
    expect<AppSettings>(true,
                        {R"( { "volume" : 1 } )", R"({"eqGains":[]})",
                         R"({"customEQPresets":{"":[1],"a":[]}})", R"({"outputDeviceUID":null})"});
    expect<AppSettings>(false, {R"({"pbMode":"repeat"})", R"({"pbMode":"All"})", R"({"pbMode":1})",
                                R"({"compPreset":null})", R"({"volume":null})", R"({"isMuted":0})",
                                R"({"eqGains":[1,null]})", R"({"eqGains":{"0":1}})",
                                R"({"customEQPresets":{"a":[1],"a":[2]}})",
                                R"({"customEQPresets":{"a":1}})", R"({"customEQPresets":[]})",
                                R"({"volume":1}{})", QByteArray("{}\0", 3), QByteArray("{}\0{}", 5),
                                "\xEF\xBB\xBF{}", "[]", "null", "", "{"});

    const QByteArray settings = R"("settings":{}})";
    const auto withTracks = [&](const QByteArray& tracks) {
        return R"({"playlists":[{"id":")" + kOtherId + R"(","name":"P","tracks":[)" + tracks +
               "]}]," + settings;
    };
    expect<PersistedState>(true, {R"({"playlists":[],)" + settings, withTracks(trackWith("")),
                                  R"({"playlists":[],"activePlaylistID":null,)" + settings});
    expect<PersistedState>(
        false, {R"({"playlists":[]})", "{" + settings, R"({"playlists":null,)" + settings,
                R"({"playlists":[null],)" + settings,
                withTracks(trackWith("") + "," + trackWith(R"(,"bpm":"")")),
                R"({"playlists":[{"id":")" + kId + R"(","name":"P"}],)" + settings,
                R"({"playlists":[],"settings":{"compPreset":"loud"}})",
                R"({"playlists":[],"resumeTrackID":"x",)" + settings});
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
            json.remove(at, random() % 4 == 0 ? static_cast<qsizetype>(random() % 50) : 0);
            if (random() % 4 == 0)
                json.insert(at, json.mid(at / 2, 40));
            else if (at < json.size() && random() % 2 == 0)
                json[at] = piece;
            else
                json.insert(at, piece);
        }
        if (const auto state = fromJson<PersistedState>(json)) {
            ++decoded;
            ASSERT_EQ(fromJson<PersistedState>(toJson(*state)), state) << json.constData();
        }
    }
    EXPECT_GT(decoded, 100);
    EXPECT_LT(decoded, 2900);
}
