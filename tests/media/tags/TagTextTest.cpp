#include "media/tags/TagText.h"

#include <gtest/gtest.h>

namespace quorel::test {

namespace {

TEST(FixMojibake, RepairsCyrillicAlone) {
    const auto latin1 = [](const char* bytes) { return QString::fromLatin1(bytes); };
    // What it is, its text, the text repaired: null where it stays as it was.
    const std::tuple<const char*, QString, QString> cases[] = {
        {"a word", latin1("\xCF\xF0\xE8\xE2\xE5\xF2"), QStringLiteral("Привет")},
        {"letters outside the alphabet's row", latin1("\xB8\xA8\xBF\xBA\xB4\x81"),
         QStringLiteral("ёЁїєґЃ")},
        {"quotes and a dash", latin1("\xCC\xEE\xF1\xEA\xE2\xE0 \x97 \x93\xEB\xFE\xE1\xE2\xE8\x94"),
         QStringLiteral("Москва — “любви”")},
        {"English", QStringLiteral("Plain text"), {}},
        {"French", latin1("\xC9t\xE9 \xE0 la campagne"), {}},
        {"exactly 0.4",
         latin1("\xCF\xF0"
                "abc"),
         {}},
        {"just above 0.4",
         latin1("\xCF\xF0\xE8"
                "abcd"),
         QStringLiteral("Приabcd")},
        {"a line end counts once",
         latin1("\xCF\xF0"
                "a\r\n"),
         QStringLiteral("Прa\r\n")},
        {"a byte that Windows-1251 lacks", latin1("\xCF\xF0\xE8\x98"), {}},
        {"Cyrillic already", QStringLiteral("Привет"), {}},
        {"one other character", latin1("\xCF\xF0\xE8\xE2\xE5\xF2") + QChar(0x2013), {}},
        {"nothing", QStringLiteral(""), {}},
    };
    for (const auto& [what, text, fixed] : cases)
        EXPECT_EQ(fixMojibake(text), fixed.isNull() ? text : fixed) << what;
    EXPECT_EQ(fixMojibake(std::nullopt), std::nullopt);
}

TEST(FixMojibake, KnowsAllOfWindows1251) {
    // Its rows from 0x80 to 0xBF as iconv gives them; 0x98 has a text of its own above.
    const QString rows = QStringLiteral("ЂЃ‚ѓ„…†‡€‰Љ‹ЊЌЋЏђ‘’“”•–—™љ›њќћџ\u00A0ЎўЈ¤Ґ¦§Ё©Є«¬\u00AD®Ї"
                                        "°±Ііґµ¶·ё№є»јЅѕї");
    const QString cyrillic = QStringLiteral("АБЮЯабюя");
    QString bytes;
    for (char16_t byte = 0x80; byte <= 0xBF; ++byte)
        bytes += byte == 0x98 ? QString() : QString(QChar(byte));
    const QString enough = QString::fromLatin1("\xC0\xC1\xDE\xDF\xE0\xE1\xFE\xFF");
    for (qsizetype i = 0; i < bytes.size(); ++i)
        EXPECT_EQ(fixMojibake(enough + bytes[i]), cyrillic + rows[i]) << i;
}

TEST(ParseNumberSlash, Forms) {
    using Number = std::optional<qint64>;
    const Number none;
    const std::tuple<const char*, Number, Number> cases[] = {
        {"3/12", 3, 12},
        {"3", 3, none},
        {"4 / 9", 4, 9},
        {"\t07/ 010 ", 7, 10},
        {"A/12", none, 12},
        {"3/B", 3, none},
        {"/12", 12, none},
        {"3/", 3, none},
        {"1/2/3", 1, none},
        {"", none, none},
        {"/", none, none},
        {"-2/+5", -2, 5},
        {"+-5", none, none},
        {"3.5", none, none},
        {"1 2", none, none},
        {"\n3", none, none},
        {"9223372036854775807", 9223372036854775807, none},
        {"9223372036854775808/1", none, 1},
    };
    for (const auto& [text, number, total] : cases) {
        EXPECT_EQ(parseNumberSlash(QString::fromLatin1(text)), (NumberAndTotal{number, total}))
            << text;
    }
    EXPECT_EQ(parseNumberSlash(std::nullopt), NumberAndTotal());
}

} // namespace

} // namespace quorel::test
