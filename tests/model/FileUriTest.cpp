#include "model/FileUri.h"

#include "model/Path.h"

#include <gtest/gtest.h>

using namespace quorel;

TEST(FileUri, holdsTheBytesOfThePath) {
    const std::tuple<const char*, const char*> cases[] = {
        {"/music/a.mp3", "file:///music/a.mp3"},
        {"/a b/100%#1?.mp3", "file:///a%20b/100%25%231%3F.mp3"},
        {"/Bj\xC3\xB6rk.flac", "file:///Bj%C3%B6rk.flac"},
        {"/old \xE9t\xE9.mp3", "file:///old%20%E9t%E9.mp3"},
        {"/it's (live) [x].wav", "file:///it's%20(live)%20%5Bx%5D.wav"},
    };
    for (const auto& [bytes, uri] : cases) {
        EXPECT_EQ(fileUri(pathFromBytes(bytes)).toLatin1(), uri);
        const auto path = pathOfFileUri(QString::fromLatin1(uri));
        EXPECT_EQ(pathToBytes(path.value_or(QString())), bytes) << uri;
    }
}

TEST(FileUri, isReadInItsOtherForms) {
    for (const char* uri : {"file:/a/b.mp3", "FILE:///a/b.mp3", "file://localhost/a/b.mp3",
                            "file:///a/%62.mp3", "file:///%61/b.mp3"})
        EXPECT_EQ(pathOfFileUri(QString::fromLatin1(uri)), QStringLiteral("/a/b.mp3")) << uri;
    EXPECT_EQ(pathOfFileUri(QStringLiteral("file:///Bj\u00F6rk")), QStringLiteral("/Bj\u00F6rk"));
}

TEST(FileUri, areFoundInAListOfThem) {
    EXPECT_EQ(pathsOfUriList("# a comment\r\nfile:///b.mp3\r\nhttp://host/c.mp3\r\n\r\n"
                             "file:///a%20b.mp3\nfile:///b.mp3"),
              (QStringList{QStringLiteral("/b.mp3"), QStringLiteral("/a b.mp3"),
                           QStringLiteral("/b.mp3")}));
    EXPECT_EQ(pathsOfUriList(""), QStringList());
    EXPECT_TRUE(namesFiles("http://host/c.mp3\r\nfile:///b.mp3"));
    EXPECT_FALSE(namesFiles("http://host/c.mp3\r\n"));
}

TEST(FileUri, ofAnotherKindOrMachineIsNone) {
    for (const char* uri : {"", "file", "file:", "file://", "file:a.mp3", "file://host/a.mp3",
                            "file://host", "http://host/a.mp3", "/a.mp3", "file:///a%0",
                            "file:///a%zz", "file:///a%", "file:///a%00b"})
        EXPECT_EQ(pathOfFileUri(QString::fromLatin1(uri)), std::nullopt) << uri;
}
