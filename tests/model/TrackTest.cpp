#include "model/Track.h"

#include "model/Path.h"

#include <gtest/gtest.h>

using namespace quorel;

TEST(Track, takesArtistAndTitleFromTheFileName) {
    const std::tuple<const char*, const char*, const char*> kCases[] = {
        {"/m/03 - Artist - Song.mp3", "Artist", "Song"},
        {"/m/03 - A - B - C.flac", "A", "B - C"},
        {"/m/07. Song.flac", "", "Song"},
        {"/m/2024.mp3", "", "2024"},
        {"/m/01_-_.mp3", "", "01_-_"},
        {"/m/01 - .mp3", "", "01 -"},
        {"/m/99 Luftballons.mp3", "", "Luftballons"},
        {"/m/50Cent - Song.mp3", "50Cent", "Song"},
        {"/m/ \t12.-_ Song.mp3", "", "Song"},
        {"/m/1-02 Song.mp3", "", "02 Song"},
        {"/m/Artist -  Song \t.mp3", "Artist", "Song"},
        {"/m/ - Song.mp3", "", "- Song"},
        {"/m/Artist - .mp3", "", "Artist -"},
        {"/m/Artist-Song.mp3", "", "Artist-Song"},
        {"/m/Mr. Brown v1.2.ogg", "", "Mr. Brown v1.2"},
        {"/m/No extension", "", "No extension"},
        {"/m/.mp3", "", ".mp3"},
        {"/m.d/Folder/", "", "Folder"},
        {"05 Bare.wav", "", "Bare"},
        {"/m/０１　春の歌 - 夏.mp3", "春の歌", "夏"},
        {"/", "", ""},
        {"", "", ""},
    };
    for (const auto& [path, artist, title] : kCases) {
        const Track::Name name = Track::parse(QString::fromUtf8(path));
        EXPECT_EQ(name.artist, QString::fromUtf8(artist)) << path;
        EXPECT_EQ(name.title, QString::fromUtf8(title)) << path;
    }
}

TEST(Track, ofOneFileTwiceAreTwoTracks) {
    const QString path = QStringLiteral("/m/01 Artist - Song.mp3");
    const Track first = Track::fromPath(path);
    const Track second = Track::fromPath(path);
    EXPECT_NE(first.id, second.id);
    EXPECT_FALSE(first.id.isNull());
    Track expected;
    expected.id = first.id;
    expected.path = path;
    expected.artist = QStringLiteral("Artist");
    expected.title = QStringLiteral("Song");
    EXPECT_EQ(first, expected);
}

TEST(Path, keepsAnyBytes) {
    const QByteArray kNames[] = {
        "",
        "/plain/ascii.mp3",
        "/caf\xC3\xA9/\xE6\x98\xA5/\xF0\x9F\x8E\xB5.mp3",
        "/latin1/Bj\xF6rk.mp3",
        "/\xFF\xFE/\x80\xC3", // a cut sequence at the end
        "/overlong \xC0\xAF, surrogate \xED\xA0\x80, beyond \xF4\x90\x80\x80",
        "/the escapes themselves \xF4\x8F\xBA\x80 \xF4\x8F\xBB\xBF",
        "/their neighbours \xF4\x8F\xB9\xBF \xF4\x8F\xBC\x80",
        "/mixed \xF6 \xF4\x8F\xBB\xB6",
    };
    QStringList texts;
    for (const QByteArray& name : kNames) {
        const QString text = pathFromBytes(name);
        EXPECT_EQ(pathToBytes(text), name) << name.toPercentEncoding().constData();
        EXPECT_TRUE(text.isValidUtf16()) << name.toPercentEncoding().constData();
        EXPECT_FALSE(texts.contains(text));
        texts += text;
    }
    EXPECT_EQ(texts[2], QString::fromUtf8(kNames[2]));

    QByteArray bytes(2, '\0');
    for (int i = 1; i < 0x10000; ++i) {
        bytes[0] = static_cast<char>(i >> 8);
        bytes[1] = static_cast<char>(i);
        ASSERT_EQ(pathToBytes(pathFromBytes(bytes)), bytes) << i;
    }
}

TEST(Path, isReadableWhereItsBytesAreNotUtf8) {
    const QString path = pathFromBytes("/m/01 Bj\xF6rk - J\xF3ga\x85.mp3");
    EXPECT_EQ(pathForDisplay(path), QStringLiteral(u"/m/01 Björk - Jóga\uFFFD.mp3"));
    EXPECT_EQ(Track::parse(path).artist, QStringLiteral(u"Björk"));
    EXPECT_EQ(Track::fromPath(path).path, path);
}
