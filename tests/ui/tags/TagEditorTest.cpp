#include "media/tags/Id3Builder.h"
#include "media/tags/MetadataReader.h"
#include "player/ControllerFixture.h"
#include "support/AudioFixtures.h"
#include "ui/tags/GenreField.h"
#include "ui/tags/TagEditorView.h"

#include <gmock/gmock.h>

#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTest>

namespace quorel::test {

namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::Not;

class TagEditorTest : public ControllerTest {
  protected:
    /// The sheet for a track of that file with these values.
    TagEditorView& edit(const QByteArray& path, Track track = {}) {
        track.id = idOf('E');
        track.path = pathFromBytes(path);
        track.duration = 1; // the tags have been read, then
        track.bitrateKbps = 128;
        track.sampleRateHz = 44100;
        saved.playlists[0].tracks.append(track);
        launch();
        view = std::make_unique<TagEditorView>(*controller, track.id, nullptr);
        view->show();
        settle();
        return *view;
    }
    QLineEdit& field(const char* name) const {
        for (QLineEdit* const field : view->findChildren<QLineEdit*>())
            if (field->accessibleName() == QLatin1String(name))
                return *field;
        throw std::runtime_error(name);
    }
    QPushButton& button(const char* name) const {
        for (QPushButton* const button : view->findChildren<QPushButton*>())
            if (button->text().remove(u'&') == QLatin1String(name))
                return *button;
        throw std::runtime_error(name);
    }
    void type(const char* name, const char* text) const {
        field(name).selectAll();
        QTest::keyClick(&field(name), Qt::Key_Delete);
        QTest::keyClicks(&field(name), QString::fromUtf8(text));
    }
    const Track& track() const { return controller->activePlaylist().tracks.back(); }
    std::vector<std::string> lines() const {
        std::vector<std::string> texts;
        for (const QLabel* const label : view->findChildren<QLabel*>())
            texts.push_back(label->text().toStdString());
        return texts;
    }

    std::unique_ptr<TagEditorView> view;
};

TEST_F(TagEditorTest, SavesWhatIsTypedIntoTheFile) {
    const QByteArray mp3 = folder.write("a.mp3", "\xFF\xFB");
    Track before;
    before.title = QStringLiteral("Was");
    before.album = QStringLiteral("Old");
    before.year = QStringLiteral("1990");
    before.trackNumber = 3;
    before.trackTotal = 4;
    before.discTotal = 2;
    edit(mp3, before);
    const struct {
        const char* name;
        const char* shown;
        const char* typed;
    } kFields[] = {{"Title", "Was", "Naïve – 歌"},  {"Artist", "", "Ärtist"},
                   {"Album Artist", "", "Various"}, {"Album", "Old", ""},
                   {"Composer", "", "Bach"},        {"Comment", "", "fine"},
                   {"Year", "1990", "2024"},        {"Track", "3", "7"},
                   {"Track total", "4", ""},        {"Disc", "", ""},
                   {"Disc total", "2", "2"},        {"Genre", "", "Soul"}};
    for (const auto& [name, shown, typed] : kFields) {
        EXPECT_EQ(field(name).text(), QString::fromUtf8(shown)) << name;
        field(name).setText(QString::fromUtf8(typed)); // QTest has no such keys
    }
    QTest::keyClick(&field("Artist"), Qt::Key_Return);
    EXPECT_FALSE(view->isVisible());
    TrackMetadata expected;
    expected.title = QString::fromUtf8("Naïve – 歌");
    expected.artist = QString::fromUtf8("Ärtist");
    expected.albumArtist = QStringLiteral("Various");
    expected.composer = QStringLiteral("Bach");
    expected.comment = QStringLiteral("fine");
    expected.year = QStringLiteral("2024");
    expected.genre = QStringLiteral("Soul");
    expected.trackNumber = 7;
    EXPECT_EQ(MetadataReader::read(pathFromBytes(mp3)), expected);
    EXPECT_EQ(track().title, expected.title);
    EXPECT_EQ(track().album, std::nullopt);
    EXPECT_EQ(track().trackNumber, 7);
    EXPECT_EQ(track().trackTotal, std::nullopt);
}

TEST_F(TagEditorTest, SaysWhyItCannotSave) {
    const QByteArray flac = folder.write("a.flac", "fLaC");
    edit(flac);
    const Track before = track();
    const auto refusal = "Tag writing is supported for MP3 files only";
    type("Title", "New");
    button("Save").click();
    EXPECT_TRUE(view->isVisible());
    EXPECT_THAT(lines(), Contains(refusal));
    EXPECT_EQ(track(), before);
    type("Title", "Newer");
    EXPECT_THAT(lines(), Not(Contains(refusal)));
    QTest::keyClick(&field("Title"), Qt::Key_Escape);
    EXPECT_FALSE(view->isVisible());
    EXPECT_EQ(track(), before);
    EXPECT_EQ(readFile(flac.toStdString()), "fLaC");
}

TEST_F(TagEditorTest, TakesOnlyNumbersWhereNumbersBelong) {
    edit(folder.write("a.mp3"));
    const struct {
        const char* typed;
        const char* taken;
        bool canSave;
    } kCases[] = {{"1a2", "12", true},
                  {" 7/9", "79", true},
                  {"", "", true},
                  {"-", "-", false},
                  {"9223372036854775807", "9223372036854775807", true},
                  {"99999999999999999999", "9999999999999999999", false}};
    for (const char* const name : {"Track", "Track total", "Disc", "Disc total"}) {
        for (const auto& [typed, taken, canSave] : kCases) {
            type(name, typed);
            EXPECT_EQ(field(name).text(), QLatin1String(taken)) << name << ": " << typed;
            EXPECT_EQ(button("Save").isEnabled(), canSave) << name << ": " << typed;
        }
        type(name, "");
    }
}

TEST_F(TagEditorTest, CountsWhatSavingDrops) {
    const std::string text = frame3("TIT2", "\0Old"s);
    const struct {
        std::string frames;
        const char* line; ///< none where it is empty
    } kCases[] = {
        {text, ""},
        {text + frame3("APIC", "picture"), "removes 1 other entry"},
        {frame3("USLT", "words") + text + frame3("TXXX", "gain"), "removes 2 other entries"}};
    for (const auto& [frames, line] : kCases) {
        saved.playlists[0].tracks.clear();
        edit(folder.write("a.mp3", QByteArray::fromStdString(id3Tag(3, frames) + "\xFF\xFB")));
        EXPECT_THAT(lines(),
                    *line ? testing::Matcher<std::vector<std::string>>(Contains(HasSubstr(line)))
                          : Not(Contains(HasSubstr("removes"))));
    }
}

TEST(Genres, MatchWhatIsTyped) {
    EXPECT_EQ(knownGenres().size(), 40);
    const struct {
        const char* typed;
        const char* matches;
    } kCases[] = {{"", ""},
                  {"s", "Soul,Soundtrack,Sephardic,Spoken Word"},
                  {"SOU", "Soul,Soundtrack"},
                  {"soul", ""},
                  {"r&", "R&B"},
                  {"k", "Klezmer,K-Pop"},
                  {"oul", ""},
                  {" s", ""}};
    for (const auto& [typed, matches] : kCases)
        EXPECT_EQ(matchingGenres(QLatin1String(typed)).join(u','), QLatin1String(matches)) << typed;
}

TEST_F(TagEditorTest, CompletesTheGenreByKeysAndMouse) {
    edit(folder.write("a.mp3"));
    auto& genre = *view->findChild<GenreField*>();
    auto& list = *view->findChild<QListWidget*>();
    genre.setFocus();
    const struct {
        const char* typed;
        QList<Qt::Key> keys;
        const char* text;
        bool open;
    } kCases[] = {{"s", {}, "s", true},
                  {"s", {Qt::Key_Down, Qt::Key_Down, Qt::Key_Return}, "Soundtrack", false},
                  {"s", {Qt::Key_Up, Qt::Key_Enter}, "Spoken Word", false},
                  {"s", {Qt::Key_Escape}, "s", false},
                  {"s", {Qt::Key_Escape, Qt::Key_Down}, "s", true},
                  {"met", {Qt::Key_Down, Qt::Key_Tab}, "Metal", false},
                  {"met", {Qt::Key_Tab}, "met", false},
                  {"soul", {}, "soul", false}};
    for (const auto& [typed, keys, text, open] : kCases) {
        type("Genre", typed);
        for (const Qt::Key key : keys)
            QTest::keyClick(&genre, key);
        EXPECT_EQ(genre.text(), QLatin1String(text)) << typed << keys.size();
        EXPECT_EQ(list.isVisible(), open) << typed << keys.size();
        EXPECT_TRUE(view->isVisible());
        genre.setFocus();
    }
    type("Genre", "c");
    EXPECT_EQ(genre.suggestions().join(u','),
              QStringLiteral("Classical,Country,Children's,Comedy"));
    EXPECT_EQ(list.pos(), genre.mapTo(view.get(), QPoint(0, genre.height())));
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {},
                      list.visualItemRect(list.item(3)).center());
    EXPECT_EQ(genre.text(), QStringLiteral("Comedy"));
    EXPECT_FALSE(list.isVisible());
    QTest::keyClick(&genre, Qt::Key_Return);
    EXPECT_FALSE(view->isVisible()); // saved: an empty file takes tags, too
    EXPECT_EQ(track().genre, QStringLiteral("Comedy"));
}

} // namespace

} // namespace quorel::test
