#include "media/NaturalOrder.h"

#include <gmock/gmock.h>

#include <algorithm>

using namespace quorel;

TEST(NaturalOrder, isThatOfAFileBrowserInEveryLocale) {
    const QStringList kOrders[] = {
        {QStringLiteral("1.mp3"), QStringLiteral("2.mp3"), QStringLiteral("10.mp3")},
        {QStringLiteral("Track 2"), QStringLiteral("track 9"), QStringLiteral("TRACK 10")},
        {QStringLiteral("a 1 b 2"), QStringLiteral("a 1 b 10"), QStringLiteral("a 002 b 1")},
        {QStringLiteral("apple"), QStringLiteral("Banana"), QStringLiteral("cherry")},
        {QStringLiteral("/m/Disc 2/10.mp3"), QStringLiteral("/m/disc 10/1.mp3")},
        {QStringLiteral(u"Eclair"), QStringLiteral(u"Éclair"), QStringLiteral("Eclairs")},
        {QStringLiteral("99999999999999999999"), QStringLiteral("100000000000000000000")},
    };
    for (const char* name : {"C", "POSIX", "en_US", "de_DE", "ja_JP"}) {
        const NaturalOrder order{QLocale(QLatin1StringView(name))};
        for (const QStringList& expected : kOrders) {
            QStringList texts = expected;
            do {
                QStringList sorted = texts;
                order.sort(sorted);
                EXPECT_EQ(sorted, expected) << name;
            } while (std::ranges::next_permutation(texts).found);
        }
    }
}

TEST(NaturalOrder, isThatOfTheLanguage) {
    QStringList texts = {QStringLiteral("z"), QStringLiteral(u"ö"), QStringLiteral("o")};
    NaturalOrder(QLocale(QStringLiteral("de_DE"))).sort(texts);
    EXPECT_EQ(texts.join(QString()), QStringLiteral(u"oöz"));
    NaturalOrder(QLocale(QStringLiteral("sv_SE"))).sort(texts);
    EXPECT_EQ(texts.join(QString()), QStringLiteral(u"ozö"));
}

TEST(NaturalOrder, leavesWhatIsEqualInItsOrder) {
    QStringList texts;
    for (int i = 0; i < 200; ++i)
        texts += i % 2 ? QStringLiteral("SONG") : QStringLiteral("song");
    const QStringList before = texts;
    NaturalOrder().sort(texts);
    EXPECT_EQ(texts, before);
}
