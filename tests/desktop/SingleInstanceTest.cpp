#include "desktop/SingleInstance.h"

#include "desktop/LocalSocket.h"
#include "model/Path.h"
#include "storage/Files.h"
#include "support/EventLoop.h"
#include "support/TestFolder.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/wait.h>

#include <QLocalSocket>
#include <csignal>

using namespace quorel;
using namespace quorel::test;
using std::chrono::milliseconds;
using Steady = std::chrono::steady_clock;

namespace {

/// The parameter: whether there is a folder for sockets; if not, they stand beside the state file.
class SingleInstanceTest : public testing::TestWithParam<bool> {
  protected:
    SingleInstanceTest() {
        ::mkdir(home_.path(kData).constData(), 0700);
        if (GetParam())
            qputenv("XDG_RUNTIME_DIR", home_.path());
        else
            qunsetenv("XDG_RUNTIME_DIR");
        application();
    }

    void receive(SingleInstance& instance) {
        QObject::connect(&instance, &SingleInstance::received, &instance,
                         [this](const QStringList& paths, const QByteArray& token) {
                             received_.push_back({paths, token});
                         });
        instance.start();
    }

    QByteArray socketFile() const {
        const QByteArray folder = GetParam() ? home_.path() : home_.path(kData);
        for (const std::string& name : home_.names(GetParam() ? QByteArray() : kData)) {
            if (name.ends_with(".socket"))
                return folder + '/' + QByteArray::fromStdString(name);
        }
        return {};
    }

    /// Sends bytes to the first; what it answers, nothing where it ends the connection.
    QByteArray answerTo(const QByteArray& bytes) {
        const Descriptor socket = local_socket::connectTo(socketFile(), milliseconds(5000));
        EXPECT_TRUE(socket.isOpen());
        ::send(socket.number(), bytes.constData(), size_t(bytes.size()), MSG_NOSIGNAL);
        char answer = 0;
        ssize_t size = -1;
        const auto answered = [&] {
            size = ::recv(socket.number(), &answer, 1, MSG_DONTWAIT);
            return size >= 0 || errno == ECONNRESET;
        };
        EXPECT_TRUE(spinUntil(answered)) << "left without an answer";
        return size == 1 ? QByteArray(1, answer) : QByteArray();
    }

    // Longer than the address of a socket may be, and no valid text.
    const QByteArray kData = "donn\xE9"
                             "es-" +
                             QByteArray(120, 'x');
    const TestFolder home_;
    const QString stateFile_ = pathFromBytes(home_.path(kData + "/quorel-data.json"));
    std::vector<HandOver> received_;
};

INSTANTIATE_TEST_SUITE_P(, SingleInstanceTest, testing::Bool(), [](const auto& test) {
    return test.param ? "inTheRuntimeFolder" : "besideTheStateFile";
});

} // namespace

TEST_P(SingleInstanceTest, ofTenLaunchesOneReceivesTheFilesOfNine) {
    std::atomic<SingleInstance*> first = nullptr;
    std::atomic<int> firsts = 0;
    std::atomic<int> handedOver = 0;
    std::atomic<int> ready = 0;
    std::vector<std::thread> launches;
    launches.reserve(10);
    for (int i = 0; i < 10; ++i) {
        launches.emplace_back([&, i] {
            ++ready;
            while (ready < 10)
                std::this_thread::yield();
            auto instance = std::make_unique<SingleInstance>(stateFile_);
            if (instance->isFirst()) {
                ++firsts;
                instance->moveToThread(QCoreApplication::instance()->thread());
                first = instance.release();
            } else if (instance->handOver({QStringLiteral("%1.mp3").arg(i)}, "token")) {
                ++handedOver;
            }
        });
    }
    EXPECT_TRUE(spinUntil([&] { return first != nullptr; }));
    const std::unique_ptr<SingleInstance> owner(first);
    receive(*owner);
    EXPECT_TRUE(spinUntil([&] { return received_.size() == 9; }));
    for (std::thread& launch : launches)
        launch.join();
    EXPECT_EQ(firsts, 1);
    EXPECT_EQ(handedOver, 9);
    std::set<QString> paths;
    for (const HandOver& handOver : received_)
        paths.insert(handOver.paths.value(0));
    EXPECT_EQ(paths.size(), 9) << "the files of one came twice";
}

TEST_P(SingleInstanceTest, whereItCannotSayWhereItIsItCannotBeFound) {
    const SingleInstance lost(pathFromBytes(home_.path("no/folder/quorel-data.json")));
    EXPECT_TRUE(lost.isFirst() && !lost.canBeFound());
}

TEST_P(SingleInstanceTest, filesArriveSoonAndByTheirBytes) {
    SingleInstance first(stateFile_);
    EXPECT_TRUE(first.canBeFound());
    receive(first);
    const QStringList paths = {QStringLiteral("./song.mp3"), QStringLiteral("/a/./b.flac"),
                               pathFromBytes("/old/\xE9t\xE9.mp3")};
    const auto begin = Steady::now();
    for (const char* token : {"", "token"}) {
        std::thread second([&] { EXPECT_TRUE(SingleInstance(stateFile_).handOver(paths, token)); });
        EXPECT_TRUE(spinUntil(
            [&] { return !received_.empty() && received_.back().activationToken == token; }));
        second.join();
    }
    EXPECT_LT(Steady::now() - begin, milliseconds(1500)) << "far less than the patience";
    const QStringList absolute = {pathFromBytes(workingFolder() + "/song.mp3"),
                                  QStringLiteral("/a/b.flac"), paths.last()};
    EXPECT_EQ(received_.front(), (HandOver{absolute, {}}));
    EXPECT_EQ(received_.back(), (HandOver{absolute, "token"}));
}

TEST_P(SingleInstanceTest, afterTheFirstWasKilledTheNextIsFirst) {
    int pipe[2] = {-1, -1};
    ASSERT_EQ(::pipe(pipe), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        const SingleInstance instance(stateFile_);
        const bool isFirst = instance.isFirst();
        if (::write(pipe[1], &isFirst, 1) == 1)
            ::pause();
        ::_exit(1);
    }
    bool childIsFirst = false;
    EXPECT_EQ(::read(pipe[0], &childIsFirst, 1), 1);
    EXPECT_TRUE(childIsFirst);
    EXPECT_FALSE(SingleInstance(stateFile_).isFirst());
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    ::close(pipe[0]);
    ::close(pipe[1]);
    EXPECT_FALSE(socketFile().isEmpty()) << "this tries nothing without the dead one's socket";

    SingleInstance next(stateFile_);
    ASSERT_TRUE(next.isFirst());
    receive(next);
    struct stat status {};
    EXPECT_EQ(::stat(socketFile().constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600);
    EXPECT_EQ(answerTo(messageOf({{QStringLiteral("/a.mp3")}, {}})).size(), 1);
    EXPECT_EQ(received_.size(), 1);
}

TEST_P(SingleInstanceTest, refusesWhatIsNoHandOver) {
    SingleInstance first(stateFile_);
    receive(first);
    const auto withSize = [](char size, const QByteArray& rest) {
        return QByteArray(3, '\0') + size + rest;
    };
    const std::pair<const char*, QByteArray> cases[] = {
        {"huge", QByteArray("\x7F\xFF\xFF\xFF") + QByteArray(100'000, 'a')},
        {"just too long", QByteArray("\x01\x00\x00\x01", 4)},
        {"of no size", withSize(0, {})},
        {"without an end", withSize(3, "abc")},
        {"with a relative path", withSize(7, QByteArray("\0a.mp3\0", 7))},
        {"with an empty path", withSize(2, QByteArray("\0\0", 2))},
        {"with more after its end", withSize(4, QByteArray("\0/a\0/b\0", 7))},
    };
    for (const auto& [what, bytes] : cases)
        EXPECT_TRUE(answerTo(bytes).isEmpty()) << what;
    EXPECT_TRUE(spinUntil([&] { return first.findChildren<QLocalSocket*>().isEmpty(); }));
    EXPECT_TRUE(received_.empty());
    EXPECT_EQ(answerTo(withSize(4, QByteArray("\0/a\0", 4))).size(), 1);
}

TEST_P(SingleInstanceTest, givesUpOnOneThatDoesNotAnswerAndTakesOverFromOneThatEnds) {
    auto first = std::make_unique<SingleInstance>(stateFile_); // is never started
    SingleInstance second(stateFile_);
    const auto begin = Steady::now();
    EXPECT_FALSE(second.handOver({QStringLiteral("/a.mp3")}, {}, milliseconds(300)));
    EXPECT_FALSE(second.isFirst());
    const auto waited = Steady::now() - begin;
    EXPECT_GE(waited, milliseconds(250));
    EXPECT_LT(waited, SingleInstance::kPatience / 2);

    std::thread patient([&] { EXPECT_FALSE(second.handOver({QStringLiteral("/a.mp3")}, {})); });
    first.reset();
    patient.join();
    EXPECT_TRUE(second.isFirst());
}
