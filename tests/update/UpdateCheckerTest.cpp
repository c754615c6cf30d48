#include "update/UpdateChecker.h"

#include "core/ManualClock.h"
#include "support/EventLoop.h"
#include "update/FeedFetch.h"
#include "update/WebServer.h"

using namespace quorel;
using namespace quorel::test;
using namespace std::chrono_literals;

namespace {

/// What all tests share; TLS has to come after the application.
struct Surroundings {
    QCoreApplication& app = application();
    TestFolder folder;
    QSslConfiguration here = makeIdentity(folder, "IP:127.0.0.1");
    QSslConfiguration elsewhere = makeIdentity(folder, "DNS:quorel.invalid");
};

const Surroundings& surroundings() {
    static const Surroundings surroundings;
    return surroundings;
}

QByteArray feed(const QByteArray& version, const QByteArray& more = {}) {
    return "{\"version\":\"" + version + "\",\"url\":\"https://quorel.invalid/get\"" + more + "}";
}

/// A feed of that many bytes.
QByteArray feedOfSize(qsizetype size) {
    const auto around = feed("2", ",\"notes\":\"\"").size();
    return feed("2", ",\"notes\":\"" + QByteArray(size - around, 'x') + '"');
}

class UpdateCheckerTest : public testing::Test {
  protected:
    UpdateSource source(const QUrl& url, const char* installed = "1.0") {
        return {url, QString::fromUtf8(installed),
                QString::fromUtf8(folder.path("config/Quorel/update.ini")),
                [this](const QUrl& page) { opened.push_back(page.toString()); },
                trustIn({here, elsewhere})};
    }
    UpdateSource source() { return source(server.url("/appcast.json")); }

    /// Runs a check to its end.
    void finish(UpdateChecker& checker, bool force) {
        checker.check(force);
        ASSERT_TRUE(spinUntil([&] { return !checker.isChecking(); }));
    }
    void finishForced(UpdateChecker& checker, const QByteArray& version) {
        server.answers["/appcast.json"] = answer(feed(version));
        finish(checker, true);
    }
    /// What a checker shows: the version it offers, "current", or nothing.
    static std::string shown(const UpdateChecker& checker) {
        if (checker.available())
            return checker.available()->version.toStdString();
        return checker.showUpToDate() ? "current" : "";
    }

    const QSslConfiguration& here = surroundings().here;
    const QSslConfiguration& elsewhere = surroundings().elsewhere;
    TestFolder folder;
    ManualClock clock;
    WebServer server{here};
    std::vector<QString> opened;
};

} // namespace

TEST_F(UpdateCheckerTest, offersWhatTheFeedTells) {
    const QByteArray shorter = "HTTP/1.1 200 OK\r\nContent-Length: 99\r\nConnection: close\r\n\r\n";
    const QByteArray endless = "HTTP/1.1 200 OK\r\nContent-Length: 999999999\r\n\r\n";
    // What is installed, what was skipped by hand before; what a checker shows after an automatic
    // check and after a forced one.
    using Text = std::string;
    const std::tuple<const char*, const char*, const char*, QByteArray, Text, Text> kCases[] = {
        {"newer", "1.9", "", answer(feed("1.10")), "1.10", "1.10"},
        {"equal", "1.2.0", "", answer(feed("1.2")), "", "current"},
        {"skipped", "1.0", "2.0", answer(feed("2.0")), "", "2.0"},
        {"skipped another", "1.0", "2.0", answer(feed("2.0.0")), "2.0.0", "2.0.0"},
        {"malformed", "1.0", "", answer(feed("2") + "}"), "", "current"},
        {"status 500", "1.0", "", answer(feed("2"), "500 Oh"), "2", "2"},
        {"no HTTP", "1.0", "", feed("2") + "\r\n\r\n", "", "current"},
        {"cut short", "1.0", "", shorter + feed("2"), "", "current"},
        {"as large as may be", "1.0", "", answer(feedOfSize(FeedFetch::kLargest)), "2", "2"},
        {"too large", "1.0", "", answer(feedOfSize(FeedFetch::kLargest + 1)), "", "current"},
        {"endless", "1.0", "", endless + feedOfSize(FeedFetch::kLargest + 1), "", "current"},
    };
    for (const auto& [what, installed, skipped, sent, automatic, forced] : kCases) {
        SCOPED_TRACE(what);
        server.answers["/before"] = answer(feed(skipped));
        UpdateChecker before(clock, source(server.url("/before"), ""));
        finish(before, true);
        before.skipThisVersion();

        server.answers["/appcast.json"] = sent;
        for (const bool force : {false, true}) {
            UpdateChecker checker(clock, source(server.url("/appcast.json"), installed));
            finish(checker, force);
            EXPECT_EQ(shown(checker), force ? forced : automatic) << "forced: " << force;
            ASSERT_TRUE(spinUntil([&] { return checker.children().isEmpty(); })) << "kept";
        }
    }
    EXPECT_EQ(clock.nextDeadline(), std::nullopt);
}

TEST_F(UpdateCheckerTest, followsRedirectsToHttpsOnly) {
    static_assert(FeedFetch::kMostRedirects == 5);
    WebServer plain(std::nullopt);
    plain.answers["/0"] = server.answers["/0"] = answer(feed("2"));
    server.answers["/insecure"] = redirectTo(plain.url("/0"), feed("9"));
    for (int left = 1; left <= 6; ++left) {
        server.answers["/" + QByteArray::number(left)] =
            redirectTo(server.url("/" + QByteArray::number(left - 1)), feed("9"));
    }
    const std::tuple<const char*, const char*, size_t> kCases[] = {
        {"/1", "2", 2}, {"/5", "2", 6}, {"/6", "current", 6}, {"/insecure", "current", 1}};
    for (const auto& [path, offered, requests] : kCases) {
        server.requests.clear();
        UpdateChecker checker(clock, source(server.url(path)));
        finish(checker, true);
        EXPECT_EQ(shown(checker), offered) << path;
        EXPECT_EQ(server.requests.size(), requests) << path;
        for (const auto& request : server.requests) {
            EXPECT_TRUE(request.contains("\r\nCache-Control: no-cache\r\n")) << request.data();
            EXPECT_FALSE(request.contains("\r\nCookie:")) << request.data();
        }
    }
    EXPECT_EQ(plain.requests.size(), 0U);
}

TEST_F(UpdateCheckerTest, trustsNoServerThatItCannotVerify) {
    WebServer misnamed(elsewhere);
    WebServer closed(here);
    closed.close();
    auto systemTrust = source();
    systemTrust.tls.reset();
    const UpdateSource kSources[] = {systemTrust, source(misnamed.url("/appcast.json")),
                                     source(closed.url("/appcast.json"))};
    server.answers["/appcast.json"] = misnamed.answers["/appcast.json"] = answer(feed("2"));
    for (const auto& bad : kSources) {
        for (const bool force : {false, true}) {
            UpdateChecker checker(clock, bad);
            finish(checker, force);
            EXPECT_EQ(shown(checker), force ? "current" : "") << bad.feed.toString().toStdString();
        }
    }
    EXPECT_EQ(server.requests.size() + misnamed.requests.size(), 0U);
}

TEST_F(UpdateCheckerTest, givesUpAfterTenSeconds) {
    const QByteArray whole = answer(feed("2"));
    for (const qsizetype inTime : {qsizetype(0), whole.size() - 1}) {
        server.answers["/appcast.json"] = whole.left(inTime);
        server.requests.clear();
        UpdateChecker checker(clock, source());
        checker.check(true);
        checker.check(true); // one runs already
        ASSERT_TRUE(spinUntil([this] { return !server.requests.empty(); }));
        clock.advance(FeedFetch::kLongest - 1ns);
        QCoreApplication::processEvents();
        EXPECT_TRUE(checker.isChecking());
        clock.advance(1ns);
        EXPECT_FALSE(checker.isChecking());
        EXPECT_EQ(shown(checker), "current");
        EXPECT_EQ(server.requests.size(), 1U);

        server.send(whole.mid(inTime));
        finishForced(checker, "1.0");
        EXPECT_EQ(shown(checker), "current") << "what comes later is not looked at";
        finishForced(checker, "3");
        EXPECT_EQ(shown(checker), "3");
    }
}

TEST_F(UpdateCheckerTest, contactsNothingWithoutAnHttpsFeed) {
    WebServer plain(std::nullopt);
    for (const QUrl& url : {QUrl(), QUrl(QStringLiteral("https:///appcast.json")),
                            QUrl(QStringLiteral("file:///appcast.json")), plain.url("/")}) {
        UpdateChecker checker(clock, source(url));
        EXPECT_FALSE(checker.isConfigured());
        checker.check(true);
        EXPECT_FALSE(checker.isChecking());
        EXPECT_EQ(shown(checker), "");
    }
    EXPECT_TRUE(UpdateChecker(clock, source()).isConfigured());
}

TEST_F(UpdateCheckerTest, firstFlashToEndHidesTheBanner) {
    UpdateChecker checker(clock, source());
    int changes = 0;
    QObject::connect(&checker, &UpdateChecker::changed, &checker, [&changes] { ++changes; });
    const auto at = [&](Clock::Duration time) {
        clock.advanceTo(time);
        return shown(checker);
    };
    finishForced(checker, "1.0");
    EXPECT_EQ(changes, 2) << "begun and ended";
    EXPECT_EQ(at(1s), "current");
    finishForced(checker, "1.0");
    EXPECT_EQ(at(3s - 1ns), "current");
    EXPECT_EQ(at(3s), "");
    EXPECT_EQ(at(3500ms), "");
    finishForced(checker, "1.0");
    EXPECT_EQ(at(4s - 1ns), "current");
    EXPECT_EQ(at(4s), "") << "the second flash, long hidden, ends";
    EXPECT_EQ(changes, 8);
    EXPECT_EQ(at(20s), "");
    EXPECT_EQ(changes, 8);
}

TEST_F(UpdateCheckerTest, offerStandsUntilTheUserActs) {
    UpdateChecker checker(clock, source());
    checker.openDownloadPage(); // with no offer nothing happens
    checker.skipThisVersion();
    finishForced(checker, "2");
    finishForced(checker, "1.0");
    EXPECT_EQ(shown(checker), "2") << "a check that finds nothing takes no offer back";
    EXPECT_TRUE(checker.showUpToDate());
    checker.dismiss();
    EXPECT_FALSE(checker.showUpToDate());

    server.answers["/appcast.json"] = answer(R"({"version":"2","url":"file:///etc/passwd"})");
    finish(checker, false);
    EXPECT_EQ(shown(checker), "2") << "hiding does not skip it";
    checker.openDownloadPage();
    EXPECT_TRUE(opened.empty());
}

TEST_F(UpdateCheckerTest, canBeDestroyedWhileChecking) {
    {
        UpdateChecker checker(clock, source());
        checker.check(true);
        ASSERT_TRUE(spinUntil([this] { return !server.requests.empty(); }));
    }
    QCoreApplication::processEvents();
    EXPECT_EQ(clock.nextDeadline(), std::nullopt);
}
