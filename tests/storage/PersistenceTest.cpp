#include "storage/Persistence.h"

#include "model/Json.h"
#include "model/Path.h"
#include "storage/FileReplacement.h"
#include "storage/Files.h"
#include "storage/Versions.h"
#include "support/TestFolder.h"

#include <gmock/gmock.h>

#include <filesystem>

using namespace quorel;
using namespace quorel::test;
using testing::UnorderedElementsAre;

namespace {

constexpr char kFile[] = "quorel-data.json";

int permissions(const QByteArray& path) {
    struct stat status {};
    EXPECT_EQ(::stat(path.constData(), &status), 0) << path.constData();
    return status.st_mode & 07777;
}

Persistence in(const TestFolder& folder, const char* name = kFile) {
    return Persistence(pathFromBytes(folder.path(name)));
}

} // namespace

TEST(Persistence, keepsItsFileWhereTheDesktopKeepsItsData) {
    const TestFolder folder;
    const std::tuple<QByteArray, QByteArray, QByteArray> kCases[] = {
        {folder.path("data"), folder.path("home"), folder.path("data/Quorel/quorel-data.json")},
        {"", folder.path("home"), folder.path("home/.local/share/Quorel/quorel-data.json")},
        {"not/absolute", folder.path("\xE9//"),
         folder.path("\xE9/.local/share/Quorel/quorel-data.json")},
    };
    const QByteArray before[] = {qgetenv("XDG_DATA_HOME"), qgetenv("HOME")};
    for (const auto& [dataHome, home, file] : kCases) {
        qputenv("XDG_DATA_HOME", dataHome);
        qputenv("HOME", home);
        EXPECT_EQ(pathToBytes(Persistence::dataURL()), file);
        EXPECT_EQ(permissions(folderOf(file)), 0700);
        EXPECT_EQ(Persistence().load(), std::nullopt);
        EXPECT_TRUE(Persistence().save(stateOfVersion(1, 1)));
        EXPECT_EQ(versionOf(Persistence().load()), 1);
        EXPECT_EQ(permissions(file), 0600);
    }
    qputenv("XDG_DATA_HOME", before[0]);
    qputenv("HOME", before[1]);
}

TEST(Persistence, savesTheWholeStateInPieces) {
    const TestFolder folder;
    PersistedState state = stateOfVersion(7, 10000);
    state.playlists.first().tracks[5000].comment = QString(3'000'000, u'x');
    ASSERT_TRUE(in(folder).save(state));
    EXPECT_EQ(in(folder).load(), state);
    EXPECT_EQ(readFile(folder.path(kFile)), toJson(state));
    EXPECT_THAT(folder.names(), UnorderedElementsAre(kFile));
}

TEST(Persistence, setsAsideOnceWhatItCouldNotRead) {
    const TestFolder folder;
    const QByteArray kUnread[] = {"not JSON", "", R"({"playlists":[]})",
                                  R"({"playlists":[],"settings":{"compPreset":"loud"}})",
                                  R"({"playlists":[],"settings":{"volume":0.5}})"};
    std::vector<std::string> names{kFile};
    for (std::size_t i = 0; i < std::size(kUnread); ++i) {
        const QByteArray file = folder.write(kFile, kUnread[i]);
        ASSERT_EQ(::chmod(file.constData(), 0644), 0);
        Persistence persistence = in(folder);
        EXPECT_EQ(persistence.load(), std::nullopt);
        EXPECT_EQ(readFile(file), kUnread[i]) << "reading leaves it as it is";
        for (int version = 1; version <= 2; ++version)
            ASSERT_TRUE(persistence.save(stateOfVersion(version, 1)));
        EXPECT_EQ(versionOf(in(folder).load()), 2);
        names.push_back(i == 0 ? "quorel-data.json.unread"
                               : "quorel-data.json.unread." + std::to_string(i + 1));
        EXPECT_THAT(folder.names(), testing::UnorderedElementsAreArray(names));
        const QByteArray aside = folder.path(QByteArray::fromStdString(names.back()));
        EXPECT_EQ(readFile(aside), kUnread[i]);
        EXPECT_EQ(permissions(aside), 0600);
    }
}

TEST(Persistence, leavesASymbolicLinkALink) {
    const std::tuple<const char*, const char*, const char*> kCases[] = {
        {"a", "elsewhere/x.json", "elsewhere/x.json"}, {"b", "c", "elsewhere/new.json"}};
    const TestFolder folder;
    folder.write("elsewhere/x.json", "old");
    folder.link("c", folder.path("elsewhere/new.json"));
    for (const auto& [link, target, file] : kCases) {
        folder.link(link, target);
        ASSERT_TRUE(in(folder, link).save(stateOfVersion(3, 1)));
        EXPECT_EQ(versionOf(in(folder, file).load()), 3);
        EXPECT_EQ(versionOf(in(folder, link).load()), 3);
        EXPECT_TRUE(std::filesystem::is_symlink(folder.path(link).toStdString()));
    }
    EXPECT_THAT(folder.names("elsewhere"), UnorderedElementsAre("x.json", "new.json"));
    folder.link("circle", "circle");
    EXPECT_FALSE(in(folder, "circle").save(stateOfVersion(3, 1)));
}

TEST(FileReplacement, givesNewFilesTheUsualPermissionsAndKeepsThoseOfOldOnes) {
    const TestFolder folder;
    const mode_t mask = ::umask(0027);
    for (const int expected : {0640, 0604}) {
        FileReplacement file(folder.path("a"), FileReplacement::Access::AsUsual);
        EXPECT_TRUE(file.write("x") && file.commit());
        EXPECT_EQ(permissions(folder.path("a")), expected);
        ASSERT_EQ(::chmod(folder.path("a").constData(), 0604), 0);
    }
    ::umask(mask);
}

TEST(FileReplacement, takesTheOldFilesPlaceOnlyWhenCommitted) {
    const TestFolder folder;
    folder.write("a", "old");
    ASSERT_EQ(::mkfifo(folder.path("pipe").constData(), 0600), 0);
    {
        FileReplacement abandoned(folder.path("a"), FileReplacement::Access::AsUsual);
        EXPECT_TRUE(abandoned.write("new"));
        EXPECT_EQ(folder.names().size(), 3U);
        FileReplacement ofAPipe(folder.path("pipe"), FileReplacement::Access::AsUsual);
        EXPECT_FALSE(ofAPipe.write("new") || ofAPipe.commit());
        FileReplacement nowhere(folder.path("none/a"), FileReplacement::Access::AsUsual);
        EXPECT_FALSE(nowhere.write("new") || nowhere.commit());
    }
    EXPECT_EQ(readFile(folder.path("a")), "old");
    EXPECT_THAT(folder.names(), UnorderedElementsAre("a", "pipe"));
}
