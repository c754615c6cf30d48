#include "update/Release.h"

#include "update/ProductAddresses.h"

#include <gtest/gtest.h>

using namespace quorel;

TEST(Release, newerIsDecidedByTheFirstComponentThatDiffers) {
    using Pair = std::pair<QStringView, QStringView>;
    // Among them a digit that is no decimal one of a version.
    const Pair kNewer[] = {
        {u"1.10", u"1.9"},     {u"2", u"1.9.9"},
        {u"1.2.0.1", u"1.2"},  {u"0.0.1", u"0"},
        {u"1.2.1", u"1.2-rc"}, {u"2.1", u"2-beta.9"},
        {u"1..3", u"1.2"},     {u"1", u""},
        {u"1.010", u"1.9"},    {u"1.1", u"1.+5"},
        {u"1.1", u"1. 5"},     {u"1", u"-1"},
        {u"1.1", u"1.\u0665"}, {u"18446744073709551617", u"2"},
    };
    for (const auto& [newer, older] : kNewer) {
        EXPECT_TRUE(isNewer(newer, older)) << newer.toUtf8().data();
        EXPECT_FALSE(isNewer(older, newer)) << newer.toUtf8().data();
    }
    for (const auto& [one, other] : {Pair{u"1.2", u"1.2.0"},
                                     {u"1..2", u".1.2."},
                                     {u"1.02", u"1.2"},
                                     {u"", u"0.0"},
                                     {u"2-beta", u"beta"},
                                     {u"1.-1", u"1"}})
        EXPECT_FALSE(isNewer(one, other) || isNewer(other, one)) << one.toUtf8().data();
}

TEST(Release, isDecodedStrictly) {
    const Release plain{QStringLiteral("1.5"), QStringLiteral("u"), std::nullopt};
    Release noted = plain;
    noted.notes = QStringLiteral("Ö\n");
    const Release empty{QString(), QString(), QString()};
    const std::tuple<const char*, std::optional<Release>> kCases[] = {
        {R"({"version":"1.5","url":"u"})", plain},
        {R"( {"url":"u","version":"1.5","notes":null,"more":[{}]} )", plain},
        {R"({"version":"1.5","url":"u","notes":"Ö\n"})", noted},
        {R"({"version":"","url":"","notes":""})", empty},
        {R"({"version":1.5,"url":"u"})", {}},
        {R"({"version":"1.5","url":null})", {}},
        {R"({"version":"1.5","url":"u","notes":1})", {}},
        {R"({"version":"1.5"})", {}},
        {R"({"url":"u"})", {}},
        {R"([{"version":"1.5","url":"u"}])", {}},
        {R"({"version":"1.5","url":"u")", {}},
        {"{\"version\":\"1.5\",\"url\":\"\xFF\"}", {}},
        {"", {}},
    };
    for (const auto& [feed, release] : kCases)
        EXPECT_EQ(releaseFromFeed(feed), release) << feed;
}

TEST(ProductAddresses, whatIsNoAddressIsEmpty) {
    const std::tuple<QUrl (*)(const QString&), const char*, const char*> kCases[] = {
        {feedOn, "quorel.invalid", "https://quorel.invalid/appcast.json"},
        {feedOn, "127.0.0.1:8443", "https://127.0.0.1:8443/appcast.json"},
        {feedOn, "", ""},
        {feedOn, "https://quorel.invalid", ""},
        {webPage, "https://quorel.invalid/a?b=%20#c", "https://quorel.invalid/a?b=%20#c"},
        {webPage, "HTTP://quorel.invalid", "http://quorel.invalid"},
        {webPage, "quorel.invalid/a", ""},
        {webPage, "https:///a", ""},
        {webPage, "https://quorel.invalid/a b", ""},
        {webPage, "file:///etc/passwd", ""},
        {webPage, "mailto:help@quorel.invalid", ""},
        {mailTo, "help@quorel.invalid", "mailto:help@quorel.invalid?subject=Quorel%20Support"},
        {mailTo, "a?b#c@quorel.invalid",
         "mailto:a%3Fb%23c@quorel.invalid?subject=Quorel%20Support"},
        {mailTo, "quorel.invalid", ""},
        {mailTo, "@quorel.invalid", ""},
        {mailTo, "help@", ""},
    };
    for (const auto& [make, text, address] : kCases)
        EXPECT_EQ(make(QString::fromUtf8(text)).toEncoded(), address) << text;
}
