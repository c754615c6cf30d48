#include "media/tags/Id3Reader.h"

#include "Id3Builder.h"
#include "support/AudioFixtures.h"

#include <gtest/gtest.h>

#include <sstream>
#include <utility>

namespace quorel::test {

namespace {

// What is read from a file that holds these bytes, as "ID=first;second" or "COMM[description]=...".
std::string itemsIn(const std::string& bytes, int64_t begin = 0) {
    const TemporaryFolder folder;
    std::string error;
    const auto file = InputFile::open(folder.write("tag", bytes), error);
    EXPECT_TRUE(file) << error;
    std::ostringstream text;
    const char* between = "";
    for (const Id3Item& item : readId3Tag(*file, begin, file->size())) {
        text << std::exchange(between, " ") << item.id;
        if (!item.description.isEmpty())
            text << '[' << item.description.toStdString() << ']';
        text << '=' << item.values.join(u';').toStdString();
    }
    return text.str();
}

const std::string kUtf16Little = "\xFF\xFE\x1F\x04\x40\x04!\0"s; // "Пр!"
const std::string kUtf16Big = "\xFE\xFF\x04\x1F\x04\x40\0!"s;

TEST(Id3Reader, TextsOfEveryEncoding) {
    const std::tuple<const char*, std::string, std::string> cases[] = {
        {"Latin-1", "\0Caf\xE9"s, "Café"},
        {"Latin-1 with a zero and more behind it", "\0One\0Two"s, "One"},
        {"bytes that other encodings have in Latin-1's place", "\0\x80\x98\xFF"s, "\u0080\u0098ÿ"},
        {"UTF-16, little-endian mark", "\1"s + kUtf16Little, "Пр!"},
        {"UTF-16, big-endian mark", "\1"s + kUtf16Big, "Пр!"},
        {"two marks", "\1\xFF\xFE"s + kUtf16Little, "Пр!"},
        {"a mark, then a zero", "\1"s + kUtf16Little + "\0\0x\0"s, "Пр!"},
        {"no mark, little-endian", "\1A\0b\0c\0"s, "Abc"},
        {"no mark, big-endian", "\1\0A\0b\0c"s, "Abc"},
        {"no mark, Cyrillic little-endian", "\1"s + kUtf16Little.substr(2, 4), "Пр"},
        {"UTF-16BE", "\2"s + kUtf16Big.substr(2), "Пр!"},
        {"UTF-16BE with a needless mark", "\2"s + kUtf16Big, "Пр!"},
        {"half a character behind", "\1"s + kUtf16Little + "x", "Пр!"},
        {"surrogates", "\1\xFF\xFE\x3D\xD8\x4A\xDE"s, "\xF0\x9F\x99\x8A"},
        {"UTF-8", "\3Пр!"s, "Пр!"},
        {"UTF-8 with a mark", "\3\xEF\xBB\xBFПр!"s, "Пр!"},
        {"broken UTF-8", "\3\xC3(", "\uFFFD("},
        {"nothing but the encoding", "\1"s, ""},
    };
    for (const auto& [what, content, text] : cases) {
        SCOPED_TRACE(what);
        const std::string expected = "TIT2=" + text;
        EXPECT_EQ(itemsIn(id3Tag(2, frame2("TT2", content))), expected);
        EXPECT_EQ(itemsIn(id3Tag(3, frame3("TIT2", content))), expected);
    }
}

TEST(Id3Reader, FramesOfEveryVersion) {
    const std::string all2 = frame2("TT2", "\0T"s) + frame2("TP1", "\0A"s) + frame2("TAL", "\0B"s) +
                             frame2("TP2", "\0C"s) + frame2("TCO", "\0(51)(39)Techno"s) +
                             frame2("TYE", "\0001987"s) + frame2("TRK", "\0003/12"s) +
                             frame2("TPA", "\0001/2"s) + frame2("TCM", "\0D"s) +
                             frame2("COM", "\0engNote\0text"s);
    const std::string expected = "TIT2=T TPE1=A TALB=B TPE2=C TCON=(51)(39)Techno TYER=1987 "
                                 "TRCK=3/12 TPOS=1/2 TCOM=D COMM[Note]=text";
    EXPECT_EQ(itemsIn(id3Tag(2, all2)), expected);

    const std::string image = frame3("APIC", std::string(70000, '\xFF'));
    EXPECT_EQ(itemsIn(id3Tag(3, frame3("TIT2", "\0T"s) + image + frame3("TYER", "\0001987"s) +
                                    frame3("TDAT", "\0003112"s) + frame3("TIT2", "\0U"s) +
                                    std::string(50, '\0') + frame3("TALB", "\0padding ended it"s))),
              "TIT2=T TYER=1987 TIT2=U");
    EXPECT_EQ(itemsIn(id3Tag(4, frame4("TPE1", "\3One\0Two\0\0"s) + frame4("APIC", image) +
                                    frame4("TDRC", "\0002001-02-03"s) +
                                    frame4("COMM", "\1eng\xFF\xFEx\0\0\0t\0"s))),
              "TPE1=One;Two TDRC=2001-02-03 COMM[x]=t");
    EXPECT_EQ(itemsIn(std::string(7, 'x') + id3Tag(3, frame3("TIT2", "\0T"s)), 7), "TIT2=T");
}

TEST(Id3Reader, PackedFrames) {
    const std::string title =
        "\1\xFF\xFE\xFF\0\xE1\xFF!\0"s; // full of what unsynchronisation breaks
    const std::string expected = "TIT2=\u00FF\uFFE1! TALB=B";
    const std::string next3 = frame3("TALB", "\0B"s);
    const std::string next4 = frame4("TALB", "\0B"s);
    const std::string packed = deflated(title);
    const std::string plainBytes = bigEndian(title.size(), 4);
    const std::string safeBytes = syncsafe(title.size());
    using Cases = std::vector<std::pair<const char*, std::string>>;
    const Cases read = {
        {"2.2, unsynchronised",
         id3Tag(2, unsynchronised(frame2("TT2", title) + frame2("TAL", "\0B"s)), 0x80)},
        {"2.3, unsynchronised", id3Tag(3, unsynchronised(frame3("TIT2", title) + next3), 0x80)},
        {"2.3, unsynchronised picture before it",
         id3Tag(3,
                unsynchronised(frame3("APIC", "\xFF\0"s + std::string(9000, '\xFF')) +
                               frame3("TIT2", title) + next3),
                0x80)},
        {"2.3, extended header",
         id3Tag(3, bigEndian(6, 4) + std::string(6, '\0') + frame3("TIT2", title) + next3, 0x40)},
        {"2.3, grouped", id3Tag(3, frame3("TIT2", "g" + title, 0x20) + next3)},
        {"2.3, compressed", id3Tag(3, frame3("TIT2", plainBytes + packed, 0x80) + next3)},
        {"2.4, all unsynchronised", id3Tag(4, frame4("TIT2", unsynchronised(title)) + next4, 0x80)},
        {"2.4, one unsynchronised",
         id3Tag(4, frame4("TIT2", safeBytes + unsynchronised(title), 0x03) + next4)},
        {"2.4, extended header",
         id3Tag(4, syncsafe(6) + "\1\0"s + frame4("TIT2", title) + next4, 0x40)},
        {"2.4, grouped and compressed",
         id3Tag(4, frame4("TIT2", "g" + safeBytes + packed, 0x49) + next4)},
    };
    const Cases passedOver = {
        {"2.3, encrypted", id3Tag(3, frame3("TIT2", "e" + title, 0x40) + next3)},
        {"2.3, compressed to more than allowed",
         id3Tag(3,
                frame3("TIT2", bigEndian(2 << 20, 4) + deflated(std::string(2 << 20, '\0')), 0x80) +
                    next3)},
        {"2.3, compressed without sense",
         id3Tag(3, frame3("TIT2", plainBytes + title, 0x80) + next3)},
        {"2.4, compressed without its size", id3Tag(4, frame4("TIT2", packed, 0x08) + next4)},
        {"2.4, encrypted", id3Tag(4, frame4("TIT2", "e" + title, 0x04) + next4)},
    };
    for (const auto& [what, tag] : read)
        EXPECT_EQ(itemsIn(tag), expected) << what;
    for (const auto& [what, tag] : passedOver)
        EXPECT_EQ(itemsIn(tag), "TALB=B") << what;
}

TEST(Id3Reader, WhatProgramsGotWrong) {
    const std::string longText(200, 'x');
    const std::string content = "\0"s + longText;
    const std::string title = "TIT2=" + longText;
    const std::string bigFrame = frame3("TIT2", "\0"s + std::string(1 << 20, 'x'));
    const std::tuple<const char*, std::string, std::string> cases[] = {
        {"plain sizes in 2.4", id3Tag(4, frame3("TIT2", content) + frame3("TALB", "\0B"s)),
         title + " TALB=B"},
        {"plain size of 2.4's last frame", id3Tag(4, frame3("TIT2", content)), title},
        {"short names in 2.3", id3Tag(3, frame3("TT2\0"s, "\0T"s)), "TIT2=T"},
        {"a frame that reaches behind the tag",
         id3Tag(3, frame3("TIT2", "\0T"s) + "TALB" + bigEndian(900, 4) + "\0\0\0B"s), "TIT2=T"},
        {"a tag that claims more than the file", id3Tag(3, frame3("TIT2", "\0T"s), 0, 99999),
         "TIT2=T"},
        {"an unknown encoding", id3Tag(3, frame3("TIT2", "\7T"s) + frame3("TALB", "\0B"s)),
         "TALB=B"},
        {"a comment without its language", id3Tag(3, frame3("COMM", "\0en"s)), ""},
        {"an empty frame", id3Tag(3, frame3("TIT2", "") + frame3("TALB", "\0B"s)), "TALB=B"},
        {"a text that is too long to be one", id3Tag(3, bigFrame + frame3("TALB", "\0B"s)),
         "TALB=B"},
        {"an extended header without end", id3Tag(3, "\x7F\xFF\xFF\xFF"s + "TIT2", 0x40), ""},
        {"a compressed tag of 2.2", id3Tag(2, frame2("TT2", "\0T"s), 0x40), ""},
        {"a version to come", id3Tag(5, frame4("TIT2", "\0T"s)), ""},
        {"a header alone", id3Tag(3, ""), ""},
        {"less than a header", "ID3\3\0"s, ""},
        {"no tag", "RIFFxxxxWAVExxxxxxxx", ""},
    };
    for (const auto& [what, tag, items] : cases)
        EXPECT_EQ(itemsIn(tag), items) << what;
}

} // namespace

} // namespace quorel::test
