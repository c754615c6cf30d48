// Saving where the disk is full, files may not grow, or nothing may be written.
#include "model/Path.h"
#include "storage/Persistence.h"
#include "storage/Versions.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>

#include <csignal>
#include <filesystem>

using namespace quorel;
using namespace quorel::test;

namespace {

/// A disk of a megabyte. Only root can have one; no other process sees it, and it goes with this
/// one.
class SmallDisk {
  public:
    explicit SmallDisk(const QByteArray& folder)
        : folder_(folder)
        , isThere_(::unshare(CLONE_NEWNS) == 0 &&
                   ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                   ::mount("tmpfs", folder.constData(), "tmpfs", MS_NOSUID, "size=1m") == 0) {}
    ~SmallDisk() {
        if (isThere_)
            ::umount2(folder_.constData(), MNT_DETACH);
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    bool isThere() const { return isThere_; }
    bool makeReadOnly() const {
        return ::mount(nullptr, folder_.constData(), nullptr, MS_REMOUNT | MS_RDONLY, "size=1m") ==
               0;
    }

  private:
    QByteArray folder_;
    bool isThere_;
};

class FullDisk : public testing::Test {
  protected:
    static constexpr int kFewTracks = 10;
    static constexpr int kManyTracks = 20000; // more than the small disk can hold

    void SetUp() override { ASSERT_TRUE(persistence_.save(stateOfVersion(1, kFewTracks))); }

    bool save(int version, int trackCount) {
        return persistence_.save(stateOfVersion(version, trackCount));
    }

    void expectOnlyVersion(int version) {
        EXPECT_EQ(versionOf(persistence_.load()), version);
        EXPECT_EQ(folder_.names().size(), 1U);
    }

    TestFolder folder_;
    SmallDisk disk_{folder_.path()};
    Persistence persistence_{pathFromBytes(folder_.path("quorel-data.json"))};
};

} // namespace

TEST_F(FullDisk, leavesTheOldFileAndNothingElse) {
    if (!disk_.isThere())
        GTEST_SKIP() << "only root can mount a small disk to fill";
    EXPECT_FALSE(save(2, kManyTracks));
    expectOnlyVersion(1);
    EXPECT_TRUE(save(3, kFewTracks)) << "there is room for less";
    expectOnlyVersion(3);
}

TEST_F(FullDisk, keepsWhatCouldNotBeReadAndHasNoRoomBesideANewFile) {
    if (!disk_.isThere())
        GTEST_SKIP() << "only root can mount a small disk to fill";
    const QByteArray damaged(900'000, '{');
    folder_.write("quorel-data.json", damaged);
    EXPECT_EQ(persistence_.load(), std::nullopt);
    EXPECT_FALSE(save(2, kManyTracks));
    EXPECT_FALSE(save(2, kManyTracks));
    EXPECT_TRUE(save(3, kFewTracks));
    EXPECT_EQ(versionOf(persistence_.load()), 3);
    const std::filesystem::path folder = folder_.path().toStdString();
    EXPECT_EQ(std::filesystem::file_size(folder / "quorel-data.json.unread"), 900'000U);
    EXPECT_FALSE(std::filesystem::exists(folder / "quorel-data.json.unread.2"));
}

TEST_F(FullDisk, whereFilesMayNotGrow) {
    const auto before = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &limit), 0);
    const rlimit low{500'000, limit.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &low), 0);
    const bool saved = save(2, kManyTracks);
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
    std::signal(SIGXFSZ, before);
    EXPECT_FALSE(saved);
    expectOnlyVersion(1);
}

TEST_F(FullDisk, whereNothingMayBeWritten) {
    const bool isReadOnly =
        disk_.isThere() ? disk_.makeReadOnly() : ::chmod(folder_.path().constData(), 0500) == 0;
    ASSERT_TRUE(isReadOnly);
    if (::geteuid() == 0 && !disk_.isThere())
        GTEST_SKIP() << "root may write everywhere, and no disk can be mounted here";
    EXPECT_FALSE(save(2, kFewTracks));
    expectOnlyVersion(1);
    ::chmod(folder_.path().constData(), 0700);
}
