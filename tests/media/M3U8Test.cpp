#include "media/M3U8.h"

#include "model/Path.h"
#include "support/TestFolder.h"

#include <gmock/gmock.h>

#include <limits>

using namespace quorel;
using quorel::test::TestFolder;

namespace {

Track track(const QString& artist, const QString& title, std::optional<double> duration,
            const QString& path) {
    Track track;
    track.artist = artist;
    track.title = title;
    track.duration = duration;
    track.path = path;
    return track;
}

/// The lines of a playlist of that one track below the header.
QByteArray textOf(const Track& track) {
    const QByteArray text = M3U8::text({{}, {}, {track}});
    EXPECT_TRUE(text.startsWith("#EXTM3U\n"));
    return text.mid(8);
}

} // namespace

TEST(M3U8, text) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    const QString path = QStringLiteral("/p.mp3");
    const std::tuple<Track, QByteArray> kCases[] = {
        {track(QStringLiteral("A"), QStringLiteral("T"), 215.9, QStringLiteral("/m/%41 #1.mp3")),
         "#EXTINF:215,A - T\n/m/%41 #1.mp3\n"},
        {track({}, QStringLiteral(u"Ödön"), {}, path), "#EXTINF:-1,Ödön\n/p.mp3\n"},
        {track({}, QStringLiteral("T"), 0.99, path), "#EXTINF:0,T\n/p.mp3\n"},
        {track({}, QStringLiteral("T"), kInfinity, path), "#EXTINF:-1,T\n/p.mp3\n"},
        {track({}, QStringLiteral("T"), -kInfinity, path), "#EXTINF:-1,T\n/p.mp3\n"},
        {track({}, QStringLiteral("T"), std::numeric_limits<double>::quiet_NaN(), path),
         "#EXTINF:-1,T\n/p.mp3\n"},
        {track(QStringLiteral("A\n/b.mp3"), QStringLiteral("T\r"), 1, path),
         "#EXTINF:1,A /b.mp3 - T \n/p.mp3\n"},
        {track({}, QStringLiteral("T"), 1, QStringLiteral("/a\n%.mp3")),
         "#EXTINF:1,T\nfile:///a%0A%25.mp3\n"},
    };
    for (const auto& [track, lines] : kCases)
        EXPECT_EQ(textOf(track), lines);
    EXPECT_EQ(M3U8::text({}), "#EXTM3U\n");
}

TEST(M3U8, entries) {
    const auto one = [](const char* path) { return QStringList{QString::fromUtf8(path)}; };
    const QStringList none;
    const std::tuple<QByteArray, std::optional<QStringList>> kCases[] = {
        {"", none},
        {"\xEF\xBB\xBF#EXTM3U\n/a.mp3\n", one("/a.mp3")},
        {"\xEF\xBB\xBF/a.mp3", one("/a.mp3")},
        {"#EXTINF:1,A - B\r\n/a.mp3\r\n\r\n", one("/a.mp3")},
        {" \t/a b.mp3\t \n", one("/a b.mp3")},
        {"  # remark\n \n", none},
        {"music/x.mp3", one("music/x.mp3")},
        {"a\nb\rc\x0B"
         "d\x0C"
         "e\xC2\x85"
         "f\xE2\x80\xA8g\xE2\x80\xA9h",
         QStringLiteral("a b c d e f g h").split(u' ')},
        {"b\na\nb\n", QStringLiteral("b a b").split(u' ')},
        {"file:///a%20b%C3%A4.mp3", one("/a bä.mp3")},
        {"FILE://localhost/a b.mp3", one("/a b.mp3")},
        {"file:///a.mp3?x#y\nfile:///b%23.mp3", QStringLiteral("/a.mp3 /b#.mp3").split(u' ')},
        {"file://\nfile://host\nfile:///a%2.mp3\nfile:///%zz\nfile:///a%00b.mp3", none},
        {QByteArray("/a\0b.mp3\n/c.mp3", 15), one("/c.mp3")},
        {"http://host/a.mp3", one("http://host/a.mp3")},
        {"/a\xFF.mp3", std::nullopt},
        {"\xFF\xFE/\0a\0", std::nullopt},
    };
    for (const auto& [text, entries] : kCases)
        EXPECT_EQ(M3U8::entries(text), entries) << text.constData();
}

TEST(M3U8, whatIsExportedIsImportedAgain) {
    const TestFolder folder;
    Playlist playlist;
    for (const char* name :
         {"2.mp3", "1.FLAC", "2.mp3", "line\nbreak.mp3", "\xE9.mp3", "\xC3\xA4 #%41.m4a"})
        playlist.tracks += Track::fromPath(pathFromBytes(folder.write(name)));
    const QString file = pathFromBytes(folder.path("My.Mix\xFC.m3u8"));
    ASSERT_TRUE(M3U8::exportPlaylist(playlist, file));
    M3U8::Import expected{QStringLiteral(u"My.Mixü"), {}};
    for (const Track& track : playlist.tracks)
        expected.paths += track.path;
    EXPECT_EQ(M3U8::importPlaylist(file), expected);
}

TEST(M3U8, importKeepsTheAudioFilesThatAreThere) {
    const TestFolder folder;
    folder.write("lists/a.mp3");
    folder.write("music/b.MP3");
    folder.write("music/cover.jpg");
    folder.write("x.mp3/c.ogg");
    folder.write("far/up/d.mp3");
    folder.link("lists/link", "../far/up");
    folder.write("lists/l.m3u8",
                 "a.mp3\n./../music/b.MP3\n../music/cover.jpg\nnone.mp3\n../x.mp3\n" +
                     folder.path("music/b.MP3") + "\nlink/../up/d.mp3\n");
    QStringList expected;
    for (const char* name : {"lists/a.mp3", "music/b.MP3", "music/b.MP3", "lists/link/../up/d.mp3"})
        expected += pathFromBytes(folder.path(name));
    const auto import = M3U8::importPlaylist(pathFromBytes(folder.path("lists/l.m3u8")));
    ASSERT_TRUE(import);
    EXPECT_EQ(import->name, QStringLiteral("l"));
    EXPECT_EQ(import->paths, expected);

    ASSERT_EQ(::mkfifo(folder.path("pipe.m3u8").constData(), 0600), 0);
    folder.write("latin.m3u8", "/a\xE9.mp3");
    for (const char* name : {"none.m3u8", "pipe.m3u8", "music", "latin.m3u8"})
        EXPECT_FALSE(M3U8::importPlaylist(pathFromBytes(folder.path(name)))) << name;
}
