// A process that saves in a loop is killed at random moments. QUOREL_KILLS says how often.
#include "model/Path.h"
#include "storage/Persistence.h"
#include "storage/Versions.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <chrono>
#include <csignal>
#include <random>
#include <thread>

using namespace quorel;
using namespace quorel::test;

namespace {

constexpr int kTracks = 3000;

/// Saves one version after another, and writes the number of each to the pipe once it is saved.
[[noreturn]] void saveForEver(const QString& file, int version, int pipe) {
    Persistence persistence(file);
    for (persistence.load();; ++version) {
        if (!persistence.save(stateOfVersion(version, kTracks)) ||
            ::write(pipe, &version, sizeof version) != sizeof version)
            ::_exit(1);
    }
}

/// Kills such a process after a while; the last version that it said it had saved, else `version`.
int lastSavedBeforeKill(const QString& file, int version, std::chrono::microseconds after) {
    int pipe[2] = {-1, -1};
    EXPECT_EQ(::pipe(pipe), 0);
    const pid_t child = ::fork();
    if (child == 0)
        saveForEver(file, version + 1, pipe[1]);
    ::close(pipe[1]);
    std::this_thread::sleep_for(after);
    EXPECT_EQ(::kill(child, SIGKILL), 0);
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status)) << "saving failed before it was killed";
    while (::read(pipe[0], &version, sizeof version) == sizeof version) {
    }
    ::close(pipe[0]);
    return version;
}

} // namespace

TEST(KillLoop, theFileIsAlwaysOneOfTheVersionsWritten) {
    const int kills = qEnvironmentVariableIsSet("QUOREL_KILLS")
                          ? qEnvironmentVariableIntValue("QUOREL_KILLS")
                          : 25;
    const TestFolder folder;
    const QString file = pathFromBytes(folder.path("quorel-data.json"));
    Persistence persistence(file);
    int version = 0;
    ASSERT_TRUE(persistence.save(stateOfVersion(version, kTracks)));
    std::mt19937 random(std::random_device{}());
    for (int kill = 0; kill < kills; ++kill) {
        const std::chrono::microseconds moment(random() % 100'000);
        const int saved = lastSavedBeforeKill(file, version, moment);
        version = versionOf(persistence.load());
        ASSERT_TRUE(version == saved || version == saved + 1)
            << "found version " << version << " where " << saved << " was the last one saved";
        ASSERT_EQ(folder.names().size(), 1U) << "the next start clears up";
    }
    EXPECT_GT(version, 0);
}
