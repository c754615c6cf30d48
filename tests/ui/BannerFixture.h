#pragma once

#include "ui/UpdateBanner.h"
#include "ui/WindowFixture.h"
#include "update/WebServer.h"

#include <QLabel>

namespace quorel::test {

/// The window with a feed to ask.
class BannerTest : public WindowTest {
  protected:
    BannerTest() {
        updateSource = {server.url("/appcast.json"), QStringLiteral("1.0"),
                        pathFromBytes(folder.path("update.ini")),
                        [this](const QUrl& page) { opened.push_back(page.toString()); },
                        trustIn({identity})};
        publish("2.0", "Better. <b>Much</b> better.");
    }
    void publish(const QByteArray& version, const QByteArray& notes) {
        server.answers["/appcast.json"] =
            answer("{\"version\":\"" + version +
                   "\",\"url\":\"https://quorel.invalid/get\",\"notes\":\"" + notes + "\"}");
    }
    void check(bool force) {
        updates->check(force);
        EXPECT_TRUE(QTest::qWaitFor([this] { return !updates->isChecking(); }, 20'000));
        rest();
    }
    UpdateBanner* banner() const { return window->findChild<UpdateBanner*>(); }
    QStringList texts() const {
        QStringList texts;
        for (const auto* const label : banner()->findChildren<QLabel*>())
            if (label->isVisible())
                texts += label->text();
        return texts;
    }

    TestFolder keys;
    QSslConfiguration identity = makeIdentity(keys, "IP:127.0.0.1");
    WebServer server{identity};
    QStringList opened;
};

} // namespace quorel::test
