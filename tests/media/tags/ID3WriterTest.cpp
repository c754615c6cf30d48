#include "media/tags/ID3Writer.h"

#include "Id3Builder.h"
#include "model/Path.h"
#include "support/AudioFixtures.h"
#include "support/ChildProcess.h"
#include "support/Mutation.h"

#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <functional>

namespace quorel::test {

namespace {

namespace fs = std::filesystem;
using Tags = ID3Writer::Tags;

int write(const std::string& path, const Tags& tags) {
    const auto error = ID3Writer::writeTags(pathFromBytes(QByteArrayView(path)), tags);
    return error ? error->code : 0;
}

Tags titled(const char* title) {
    Tags tags;
    tags.title = QString::fromUtf8(title);
    return tags;
}

std::string bytesOf(const Tags& tags) {
    return ID3Writer::tagBytes(tags).toStdString();
}

std::string fromHex(const char* hex) {
    return QByteArray::fromHex(hex).toStdString();
}

TEST(ID3Writer, LaysTagsOutByteForByte) {
    Tags numbers;
    numbers.trackNumber = 3;
    numbers.trackTotal = 10;
    numbers.discNumber = -1;
    Tags totals;
    totals.trackTotal = 10;
    totals.discTotal = 2;
    Tags comment;
    comment.comment = QStringLiteral("é");
    Tags every;
    every.title = every.artist = every.album = every.albumArtist = every.genre = every.year =
        every.composer = every.comment = QStringLiteral("x");
    every.trackNumber = every.discNumber = 5;
    const std::tuple<const char*, Tags, std::string> cases[] = {
        {"nothing", {}, fromHex("494433 03 00 00 00000000")},
        {"a title", titled("Ab"),
         fromHex("494433 03 00 00 00000011 54495432 00000007 0000 01 FFFE 4100 6200")},
        {"numbers", numbers,
         fromHex("494433 030000 00000026 5452434B 0000000B 0000 01FFFE 3300 2F00 3100 3000"
                 "54504F53 00000007 0000 01FFFE 2D00 3100")},
        {"totals without numbers", totals, fromHex("494433 030000 00000000")},
        {"a comment", comment,
         fromHex("494433 030000 00000016 434F4D4D 0000000C 0000 01 656E67 FFFE 0000 FFFE E900")},
    };
    for (const auto& [what, tags, bytes] : cases)
        EXPECT_EQ(bytesOf(tags), bytes) << what;
    std::string order;
    const std::string bytes = bytesOf(every);
    for (std::size_t at = 10; at < bytes.size();
         at += 10 + static_cast<unsigned char>(bytes[at + 7]))
        order += bytes.substr(at, 4) + " ";
    EXPECT_EQ(order, "TIT2 TPE1 TALB TPE2 TCON TYER TCOM COMM TRCK TPOS ");
    const std::string large = bytesOf(titled(std::string(100'000, 'x').c_str()));
    EXPECT_EQ(large.substr(6, 12), syncsafe(200'013) + "TIT2" + bigEndian(200'003, 4));
}

TEST(ID3Writer, ReplacesTheOldTagAlone) {
    const std::string audio =
        "\xFF\xFB\x90\x64"s + std::string(3000, 'a') + "TAG" + std::string(125, 'v');
    const std::string nothing;
    const struct {
        const char* what;
        std::string file;
        std::string kept; // behind the new tag
        bool orig = false;
    } cases[] = {
        {"no tag", audio, audio},
        {"an empty file", nothing, nothing},
        {"137 bytes", "ID3\3\0\0\0\0\0\x7F"s + std::string(127, 't') + audio, audio},
        {"147 with a footer", "ID3\4\0\x10\0\0\0\x7F"s + std::string(137, 't') + audio, audio},
        {"version 2.2", id3Tag(2, std::string(300, 't')) + audio, audio},
        {"bits that sizes do not have", "ID3\3\0\0\x80\x80\x80\x85"s + "ttttt" + audio, audio},
        {"ten bytes", "ID3\3\0\0\0\0\0\0"s, "ID3\3\0\0\0\0\0\0"s},
        {"eleven bytes", "ID3\3\0\0\0\0\0\0a"s, "a"},
        {"all of it", id3Tag(3, std::string(50, 't')), nothing},
        {"more than all of it", id3Tag(3, audio, 0, 3200), nothing, true},
        {"as good as endless", "ID3\3\0\0\x7F\x7F\x7F\x7F"s + audio, nothing, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const TemporaryFolder folder;
        const std::string path = folder.write("song.mp3", c.file);
        EXPECT_EQ(write(path, titled("New")), 0);
        EXPECT_EQ(readFile(path), bytesOf(titled("New")) + c.kept);
        EXPECT_EQ(folder.names().size(), c.orig ? 2U : 1U);
        if (c.orig) {
            EXPECT_EQ(readFile(path + ".orig"), c.file);
            folder.write("song.mp3", c.file + "another");
            EXPECT_EQ(write(path, {}), 0);
            EXPECT_EQ(readFile(path + ".orig"), c.file);
            EXPECT_EQ(readFile(path + ".orig.2"), c.file + "another");
        }
    }
}

TEST(ID3Writer, OthersReadWhatIsWritten) {
    const TemporaryFolder folder;
    const std::string wav = folder.write("in.wav", wavBytes(TestSound(44100, 2, 16)));
    const std::string path = folder.path("song.mp3");
    if (!runTool({"lame", "--quiet", "--tt", "Old", "--tg", "Rock", wav, path}))
        GTEST_SKIP() << "lame is not installed";
    Tags tags = titled("Заголовок 🎵");
    tags.artist = QStringLiteral("Artist / Other");
    tags.album = QStringLiteral(" blank ");
    tags.albumArtist = QStringLiteral("Various");
    tags.genre = QStringLiteral("(17)");
    tags.year = QStringLiteral("1999");
    tags.trackNumber = 7;
    tags.trackTotal = 12;
    tags.discNumber = 2;
    tags.composer = QStringLiteral("Компо́зитор");
    tags.comment = QStringLiteral("two\nlines");
    ASSERT_EQ(write(path, tags), 0);

    const std::string probed = folder.path("probed");
    const int output = ::open(probed.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    const int status = ChildProcess({"ffprobe", "-v", "error", "-show_entries", "format_tags",
                                     "-of", "default=nw=1", path},
                                    folder.path("log"), output)
                           .wait();
    ::close(output);
    EXPECT_EQ(status, 0) << "ffprobe is not installed";
    EXPECT_EQ(readFile(folder.path("log")), ""); // it complains of nothing
    const std::string found = readFile(probed);
    for (const char* line :
         {"TAG:title=Заголовок 🎵\n", "TAG:artist=Artist / Other\n", "TAG:album= blank \n",
          "TAG:album_artist=Various\n", "TAG:date=1999\n", "TAG:composer=Компо́зитор\n",
          "TAG:comment=two\nlines\n", "TAG:track=7/12\n", "TAG:disc=2\n"})
        EXPECT_NE(found.find(line), std::string::npos) << line << "in\n" << found;
}

TEST(ID3Writer, GoesByTheName) {
    const TemporaryFolder folder;
    for (const auto& [name, code] : {std::pair{"Song.MP3", 0},
                                     {"so.ng.mP3", 0},
                                     {"song.flac", 10},
                                     {"song.mp3.bak", 10},
                                     {"mp3", 10},
                                     {".mp3", 10}}) {
        const std::string path = folder.write(name, "audio");
        EXPECT_EQ(write(path, titled("T")), code) << name;
        EXPECT_EQ(readFile(path), (code == 0 ? bytesOf(titled("T")) : "") + "audio") << name;
    }
}

TEST(ID3Writer, KeepsLinksPermissionsAndOwner) {
    const TemporaryFolder folder;
    fs::create_directory(folder.path("music"));
    const std::string file = folder.write("music/a\xFFsong.mp3", "audio");
    const std::string link = folder.path("link.mp3");
    fs::create_symlink("again", link);
    fs::create_symlink("music/a\xFFsong.mp3", folder.path("again"));
    ASSERT_EQ(::chmod(file.c_str(), 0640), 0);
    const bool superuser = ::geteuid() == 0;
    if (superuser) {
        ASSERT_EQ(::chown(file.c_str(), 1234, 2345), 0);
    }
    ASSERT_EQ(write(link, titled("T")), 0);
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(readFile(file), bytesOf(titled("T")) + "audio");
    struct stat status {};
    ASSERT_EQ(::stat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0640U);
    EXPECT_EQ(status.st_uid, superuser ? 1234U : ::geteuid());
    EXPECT_EQ(status.st_gid, superuser ? 2345U : status.st_gid);
    EXPECT_EQ(folder.names().size(), 3U);
    EXPECT_EQ(folder.names("music").size(), 1U);
}

// The error number of `work` done by a user without privileges, in a process of its own.
int asNobody(const std::function<int()>& work) {
    const pid_t child = ::fork();
    if (child == 0) {
        const bool superuser = ::geteuid() == 0;
        if (superuser &&
            (::setgroups(0, nullptr) != 0 || ::setgid(65534) != 0 || ::setuid(65534) != 0))
            ::_exit(255);
        ::_exit(work());
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

int withFileLimit(rlim_t bytes, const std::function<int()>& work) {
    rlimit before{};
    ::getrlimit(RLIMIT_FSIZE, &before);
    const rlimit limit{bytes, before.rlim_max};
    auto* const handler = std::signal(SIGXFSZ, SIG_IGN);
    ::setrlimit(RLIMIT_FSIZE, &limit);
    const int result = work();
    ::setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    return result;
}

TEST(ID3Writer, FailuresLeaveTheFileAsItWas) {
    const std::string bytes = id3Tag(3, frame3("TIT2", "\0Old"s)) + std::string(300'000, 'a');
    const std::string cut = id3Tag(3, std::string(300'000, 'a'), 0, 400'000);
    using Attempt = std::function<int(const std::string& path)>;
    const Attempt bySelf = [](const auto& path) { return write(path, titled("T")); };
    const Attempt byOther = [&](const auto& path) {
        return asNobody([&] { return bySelf(path); });
    };
    const auto limitedTo = [&](rlim_t limit) -> Attempt {
        return [&, limit](const auto& path) {
            return withFileLimit(limit, [&] { return bySelf(path); });
        };
    };
    const struct {
        const char* what;
        mode_t file;
        mode_t folder;
        int error;
        Attempt attempt;
        std::string content;
        std::size_t left = 1; // files in the folder
    } cases[] = {
        {"a read-only file, for the superuser too", 0444, 0755, EACCES, bySelf, bytes},
        {"a file of somebody else's", 0644, 0777, EACCES, byOther, bytes},
        {"a folder of somebody else's", 0666, 0755, EACCES, byOther, bytes},
        // Here everyone may write and add files, but not remove others'.
        {"a file that cannot be replaced", 0666, 01777, EPERM, byOther, bytes, 2},
        // Nor can the second name of the file be removed that it was to be kept by.
        {"the same, with all sound in the tag", 0666, 01777, EPERM, byOther, cut, 3},
        {"no room for the sound", 0644, 0755, EFBIG, limitedTo(100'000), bytes},
        {"no room for the tag", 0644, 0755, EFBIG, limitedTo(5), bytes},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        if (::geteuid() != 0 && c.error != EFBIG && c.file != 0444)
            continue; // somebody else is needed
        const TemporaryFolder folder;
        ASSERT_EQ(::chmod(folder.path("").c_str(), 0755), 0);
        fs::create_directory(folder.path("music"));
        const std::string path = folder.write("music/song.mp3", c.content);
        ASSERT_EQ(::chmod(path.c_str(), c.file), 0);
        ASSERT_EQ(::chmod(folder.path("music").c_str(), c.folder), 0);
        EXPECT_EQ(c.attempt(path), c.error);
        EXPECT_EQ(readFile(path), c.content);
        EXPECT_EQ(folder.names("music").size(), c.left);
    }
    const TemporaryFolder folder;
    fs::create_directory(folder.path("folder.mp3"));
    EXPECT_EQ(write(folder.path("folder.mp3"), {}), EISDIR);
    EXPECT_EQ(write(folder.path("none.mp3"), {}), ENOENT);
    const auto error = ID3Writer::writeTags(pathFromBytes(folder.path("none.mp3").c_str()), {});
    EXPECT_EQ(error->description, QStringLiteral("No such file or directory"));
    EXPECT_EQ(error->domain, QStringLiteral("POSIX"));
}

TEST(ID3Writer, CountsWhatItWouldDrop) {
    const std::string title = frame3("TIT2", "\0Old"s);
    const std::string picture = frame3("APIC", "\0image/png\0\3\0"s + std::string(70'000, 'x'));
    const auto comment = [](const std::string& about) {
        return frame3("COMM", "\0eng"s + about + "\0text"s);
    };
    const std::tuple<const char*, std::string, int64_t> cases[] = {
        {"no tag", "\xFF\xFB", 0},
        {"what is written again", id3Tag(3, title + frame3("TRCK", "\0001"s) + comment("")), 0},
        {"a picture and lyrics", id3Tag(3, picture + title + frame3("USLT", "\0eng\0la"s)), 2},
        {"gains", id3Tag(4, frame4("TXXX", "\0gain\0-3"s) + frame4("RVA2", "x\0"s)), 2},
        {"padding", id3Tag(3, title + picture + std::string(100, '\0')), 1},
        {"short names", id3Tag(2, frame2("TT2", "\0T"s) + frame2("PIC", "x") + frame2("ULT", "x")),
         2},
        {"a second comment", id3Tag(3, comment("") + comment("other")), 1},
        {"a comment that is a gain", id3Tag(3, comment("iTunNORM")), 1},
        {"both forms of the year",
         id3Tag(4, frame4("TYER", "\0001999"s) + frame4("TDRC", "\0001999"s)), 0},
        {"an encrypted title", id3Tag(3, frame3("TIT2", "\0Old"s, 0x40)), 1},
    };
    const TemporaryFolder folder;
    const auto droppedOf = [](const std::string& path) {
        return ID3Writer::framesDropped(pathFromBytes(path.c_str()));
    };
    for (const auto& [what, file, dropped] : cases) {
        EXPECT_EQ(droppedOf(folder.write("song.mp3", file)), dropped) << what;
        EXPECT_EQ(droppedOf(folder.write("song.flac", file)), 0) << what;
    }
    EXPECT_EQ(droppedOf(folder.path("none.mp3")), 0);
}

TEST(ID3Writer, LargeFilesPassThroughLittleMemory) {
    constexpr off_t kBytes = 80 << 20;
    const TemporaryFolder folder;
    const std::string path = folder.write("song.mp3", "\xFF\xFB");
    ASSERT_EQ(::truncate(path.c_str(), kBytes), 0);
    const int64_t before = peakMemory();
    ASSERT_EQ(write(path, titled("T")), 0);
    EXPECT_LT(peakMemory() - before, 16 << 20);
    EXPECT_EQ(fs::file_size(path), kBytes + bytesOf(titled("T")).size());
}

} // namespace

} // namespace quorel::test
