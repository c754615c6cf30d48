#include "media/AudioFiles.h"
#include "model/Path.h"
#include "support/TestFolder.h"

#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/un.h>

using namespace quorel;
using quorel::test::TestFolder;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

namespace {

/// What is collected from these names in the folder, as names in it again.
QByteArrayList collect(const TestFolder& folder, const QByteArrayList& names) {
    QStringList from;
    for (const QByteArray& name : names)
        from += pathFromBytes(folder.path(name));
    QByteArrayList found;
    for (const QString& path : collectAudioFiles(from))
        found += pathToBytes(path).mid(folder.path().size() + 1);
    return found;
}

QByteArrayList collect(const TestFolder& folder) {
    return collect(folder, {""});
}

} // namespace

TEST(Collect, takesWhatIsNamedAsAudio) {
    const TestFolder folder;
    const QByteArrayList audio = {"1.mp3",  "2.m4a", "3.aac",   "4.FLAC", "5.Wav",
                                  "6.aiff", "7.aif", "8.x.CAF", "9.M4B",  "10.Song.MP3"};
    for (const QByteArray& name :
         audio + QByteArrayList{"a.ogg", "a.opus", "mp3", "a.mp3x", "a.mp3.", "a.mp 3", "cover.jpg",
                                ".hidden.mp3", ".mp3"})
        folder.write(name);
    EXPECT_EQ(collect(folder), audio);
    EXPECT_THAT(collect(folder, {".hidden.mp3", ".mp3", "a.ogg", "none.mp3", "none"}),
                ElementsAre(".hidden.mp3"))
        << "what is chosen by itself is not hidden, but has to be audio all the same";
}

TEST(Collect, sortsAllByPathAndTakesEachOnce) {
    const TestFolder folder;
    for (const char* name : {"b/2.mp3", "b/10.mp3", "b/1.mp3", "A/Disc 2/x.mp3", "A/Disc 10/x.mp3"})
        folder.write(name);
    const auto all =
        ElementsAre("A/Disc 2/x.mp3", "A/Disc 10/x.mp3", "b/1.mp3", "b/2.mp3", "b/10.mp3");
    EXPECT_THAT(collect(folder), all);
    EXPECT_THAT(collect(folder, {"b/10.mp3", "b/", "b//10.mp3", "", "A", "A/../b/./10.mp3", "b"}),
                all);
}

TEST(Collect, passesOverWhatIsHiddenButEntersPackages) {
    const TestFolder folder;
    for (const char* name : {".git/a.mp3", ".git/b/c.mp3", "Live.app/Contents/d.mp3", "x.mp3/e.mp3",
                             "f.mp3", "g.mp3", "gone/h.mp3"})
        folder.write(name);
    folder.write(".hidden", "g.mp3\ngone\n");
    EXPECT_THAT(collect(folder), ElementsAre("f.mp3", "Live.app/Contents/d.mp3", "x.mp3/e.mp3"));
}

TEST(Collect, followsEachLinkOnceAndNoCircle) {
    const TestFolder folder;
    folder.write("in/album/1.mp3");
    folder.write("out/2.mp3");
    folder.write("out/deep/3.mp3");
    folder.link("in/a circle", "..");
    folder.link("in/album/self", ".");
    folder.link("in/elsewhere", "../out");
    folder.link("in/elsewhere too", "../out");
    folder.link("in/same", "album");
    folder.link("in/song.mp3", "../out/2.mp3");
    folder.link("in/dangling.mp3", "nowhere.mp3");
    folder.link("in/endless.mp3", "endless.mp3");
    folder.link("out/back", "../in");
    EXPECT_THAT(collect(folder, {"in"}),
                ElementsAre("in/a circle/out/2.mp3", "in/a circle/out/deep/3.mp3", "in/album/1.mp3",
                            "in/song.mp3"));
    EXPECT_THAT(collect(folder, {"out/back/elsewhere"}),
                ElementsAre("out/back/elsewhere/2.mp3", "out/back/elsewhere/back/album/1.mp3",
                            "out/back/elsewhere/back/song.mp3", "out/back/elsewhere/deep/3.mp3"))
        << "a link that was chosen is entered, whatever it leads to";
}

TEST(Collect, opensNothingButFoldersAndPassesOverTheUnreadable) {
    const TestFolder folder;
    folder.write("a.mp3");
    ASSERT_EQ(::mkfifo(folder.path("pipe.mp3").constData(), 0600), 0);
    const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    folder.path("socket.mp3").toStdString().copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(::bind(socket, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    folder.link("device.mp3", "/dev/zero");
    folder.write("locked/b.mp3");
    ASSERT_EQ(::chmod(folder.path("locked").constData(), 0), 0);
    QByteArrayList expected = {"a.mp3"};
    if (::geteuid() == 0) // who may enter everything
        expected += "locked/b.mp3";
    EXPECT_EQ(collect(folder, {"", "pipe.mp3", "socket.mp3", "device.mp3"}), expected);
    ::chmod(folder.path("locked").constData(), 0700);
    ::close(socket);
}

TEST(Collect, findsFilesWhoseNamesAreAnyBytes) {
    const TestFolder folder;
    const QByteArrayList names = {
        "\x01.mp3",         "new\nline.mp3",        "\xE9t\xE9.mp3",    "\xF0\x9F\x8E\xB5.mp3",
        "\xED\xA0\x80.mp3", "\xF4\x8F\xBA\x80.mp3", "\xFF\xFE/\x80.mp3"};
    for (const QByteArray& name : names)
        folder.write(name);
    EXPECT_THAT(collect(folder), testing::UnorderedElementsAreArray(names));
}

TEST(Collect, saysHowFarItIsAndStops) {
    const TestFolder folder;
    for (int i = 0; i < 10; ++i)
        folder.write("f" + QByteArray::number(i) + "/a.mp3");
    std::stop_source stop;
    std::vector<qsizetype> counts;
    const auto count = [&](qsizetype found) {
        counts.push_back(found);
        if (found == 5)
            stop.request_stop();
    };
    const QStringList from = {pathFromBytes(folder.path())};
    EXPECT_EQ(collectAudioFiles(from, {{}, count}).size(), 10);
    EXPECT_THAT(counts, ElementsAreArray({0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10}));
    counts.clear();
    EXPECT_THAT(collectAudioFiles(from, {stop.get_token(), count}), IsEmpty());
    EXPECT_THAT(counts, IsEmpty()) << "it was stopped before it began";
    stop = {};
    EXPECT_THAT(collectAudioFiles(from, {stop.get_token(), count}), IsEmpty());
    EXPECT_EQ(counts.back(), 5);
}
