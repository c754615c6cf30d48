#include "media/tags/MetadataReader.h"

#include "Id3Builder.h"
#include "audio/decode/EncodedFiles.h"
#include "model/Path.h"
#include "support/AudioMatrix.h"
#include "support/Mutation.h"
#include "tools/quorel-cli/MetadataJson.h"

#include <gtest/gtest.h>

#include <QJsonDocument>
#include <cmath>

namespace quorel::test {

namespace {

namespace fs = std::filesystem;

TrackMetadata readPath(const std::string& path) {
    return MetadataReader::read(pathFromBytes(QByteArrayView(path)));
}

// The tags as JSON, without what is known of the sound.
std::string tagsIn(const std::string& path) {
    TrackMetadata metadata = readPath(path);
    metadata.duration.reset();
    metadata.sampleRateHz.reset();
    metadata.bitrateKbps.reset();
    return QJsonDocument(cli::toJson(metadata)).toJson(QJsonDocument::Compact).toStdString();
}

const std::string kSound = wavBytes(TestSound(4410, 2, 16));

std::string wavWith(const std::string& chunks) {
    return wavBytes(TestSound(4410, 2, 16), {.after = chunks});
}

std::string aiffWith(const std::string& chunks) {
    const std::string rate = "\x40\x0E\xAC\x44"s + std::string(6, '\0'); // 44100
    return "FORM\0\0\0\0AIFF"s + iffChunk("COMM", "\0\1\0\0\0\4\0\x10"s + rate) +
           iffChunk("SSND", std::string(16, '\0')) + chunks;
}

std::string cafWith(const std::string& information) {
    const std::string rate = "\x40\xE5\x88\x80"s + std::string(4, '\0'); // 44100
    const std::string description = rate + "lpcm" + std::string(4, '\0') + bigEndian(2, 4) +
                                    bigEndian(1, 4) + bigEndian(1, 4) + bigEndian(16, 4);
    const auto chunk = [](const std::string& name, const std::string& content) {
        return name + bigEndian(content.size(), 8) + content;
    };
    return "caff\0\1\0\0"s + chunk("desc", description) + chunk("info", information) +
           chunk("data", std::string(12, '\0'));
}

TEST(MetadataReader, TagsOfEveryPlace) {
    const std::string frames =
        frame3("TIT2", "\0\xCF\xF0\xE8\xE2\xE5\xF2"s) + frame3("TPE1", "\0One"s) +
        frame3("TPE1", "\0Two"s) + frame3("TPE1", "\0"s) + frame3("TCON", "\0(51)(39)"s) +
        frame3("TYER", "\0001987"s) + frame3("TRCK", "\0A/12"s) + frame3("TPOS", "\0001/2"s) +
        frame3("TPE2", "\0\xC4\xE4"s) + frame3("TCOM", "\0Who"s) + frame3("COMM", "\0eng\0Text"s) +
        frame3("COMM", "\0engiTunNORM\0 00000A"s);
    const std::string tag = id3Tag(3, frames);
    const std::string common =
        R"~("artist":"Two","comment":"Text","composer":"Who","discNumber":1,)~"
        R"~("discTotal":2,"genre":"(51)(39)","title":"Привет",)~"
        R"~("trackTotal":12,"year":"1987"})~";
    const std::string all = R"~({"albumArtist":"Дд",)~" + common;
    const std::string withAlbum = R"~({"album":"INFO","albumArtist":"Дд",)~" + common;
    const std::string info = chunk("LIST", "INFO" + chunk("INAM", "Na\xEFve"s) +
                                               chunk("IART", "Пр\0"s) + chunk("IPRD", "INFO"));
    const std::string id3v1 =
        "TAG" + "V1 title"s + std::string(22, '\0') + "V1 artist" + std::string(86, '\0');
    const std::string other = id3Tag(3, frame3("TIT2", "\0Other"s));
    const std::tuple<const char*, std::string, std::string> cases[] = {
        {"nothing but a tag", tag, all},
        {"a sound without tags", kSound, "{}"},
        {"in front of WAV", tag + kSound, all},
        {"in a WAV's chunk", wavWith(chunk("id3 ", tag)), all},
        {"in a WAV's chunk, with INFO", wavWith(info + chunk("ID3 ", tag)), withAlbum},
        {"a WAV's INFO", wavWith(info), R"~({"album":"INFO","artist":"Пр","title":"Naïve"})~"},
        {"an AIFF's chunk", aiffWith(iffChunk("ID3 ", tag)), all},
        {"AIFF's own chunks", aiffWith(iffChunk("AUTH", "Au") + iffChunk("NAME", "Na\0"s)),
         R"~({"artist":"Au","title":"Na"})~"},
        {"CAF's information", cafWith("\0\0\0\3title\0T\0album\0\xC3\x84lbum\0tempo\000120\0"s),
         R"~({"album":"Älbum","title":"T"})~"},
        {"ID3v1", std::string(400, 'x') + id3v1, R"~({"artist":"V1 artist","title":"V1 title"})~"},
        {"ID3v1 for what ID3v2 lacks", other + std::string(400, 'x') + id3v1,
         R"~({"artist":"V1 artist","title":"Other"})~"},
        {"a tag left over behind a new one", tag + other + std::string(400, 'x'), all},
        {"an empty tag before one", id3Tag(3, "") + other + std::string(400, 'x'),
         R"~({"title":"Other"})~"},
        {"years", id3Tag(4, frame4("TDRC", "\0002001-02"s) + frame4("TYER", "\0001999"s)),
         R"~({"year":"1999"})~"},
        {"several values", id3Tag(4, frame4("TPE1", "\3One\0Two"s) + frame4("TRCK", "\0001\0002"s)),
         R"~({"artist":"One / Two","trackNumber":1})~"},
    };
    const TemporaryFolder folder;
    for (const auto& [what, file, tags] : cases)
        EXPECT_EQ(tagsIn(folder.write("file\xFF.mp3", file)), tags) << what;
    EXPECT_EQ(readPath(folder.path("none.mp3")), TrackMetadata());
    EXPECT_EQ(readPath(folder.path("")), TrackMetadata());
}

TEST(MetadataReader, TagsThatEncodersWrite) {
    if (!hasTool("ffmpeg") || !hasTool("flac"))
        GTEST_SKIP() << "ffmpeg or flac is not installed";
    const TemporaryFolder folder;
    const TestSound sound(22050, 2, 16);
    for (const char* name : {"a.m4a", "a.flac", "a.mp3", "a.aiff", "a.caf"}) {
        encodeWith(folder, name, sound,
                   {"-metadata", "title=Tïtle", "-metadata", "artist=Ärtist", "-metadata",
                    "album=Älbum", "-metadata", "genre=Acid", "-write_id3v2", "1"});
        const TrackMetadata metadata = readPath(folder.path(name));
        EXPECT_EQ(metadata.title, QStringLiteral("Tïtle")) << name;
        EXPECT_EQ(metadata.artist, QStringLiteral("Ärtist")) << name;
        EXPECT_EQ(metadata.album, QStringLiteral("Älbum")) << name;
        const bool id3 = std::string(name) == "a.mp3" || std::string(name) == "a.aiff";
        EXPECT_EQ(metadata.genre.has_value(), id3) << name;
        EXPECT_EQ(metadata.sampleRateHz, 44100) << name;
        EXPECT_DOUBLE_EQ(metadata.duration.value_or(0), 0.5) << name;
    }
}

// Whatever way length and rates are found, they are what playing the file would give.
TEST(MetadataReader, SoundIsAsPlayed) {
    std::vector<std::string> paths = corpusFiles();
    for (const MatrixFile& file : matrixFiles(QUOREL_AUDIO_MATRIX))
        paths.push_back(file.path);
    if (paths.empty())
        GTEST_SKIP() << "neither a corpus nor what scripts/make-audio-matrix makes";
    int compared = 0;
    for (const std::string& path : paths) {
        SCOPED_TRACE(path);
        const TrackMetadata metadata = readPath(path);
        const auto opened = AudioFile::open(path);
        if (!opened.file) {
            // Heads that are whole in front of broken sound may be believed.
            EXPECT_TRUE(!metadata.duration || path.ends_with(".flac"));
            continue;
        }
        ++compared;
        EXPECT_EQ(metadata.sampleRateHz, opened.file->sampleRate());
        EXPECT_EQ(std::llround(metadata.duration.value_or(-1) * opened.file->sampleRate()),
                  opened.file->length());
        EXPECT_EQ(metadata.bitrateKbps.value_or(0), std::llround(opened.file->dataRate() / 1000));
    }
    EXPECT_GT(compared, 50);
}

TEST(MetadataReader, SurvivesWhateverAFileHolds) {
    constexpr std::size_t kLargest = 300'000;
    std::vector<std::string> seeds;
    for (const MatrixFile& file : matrixFiles(QUOREL_AUDIO_SEEDS))
        if (fs::is_regular_file(file.path)) // one is a pipe
            seeds.push_back(file.path);
    for (const std::string& path : corpusFiles()) {
        const double start = processorSeconds();
        readPath(path); // which also loads all libraries before memory is measured
        EXPECT_LT(processorSeconds() - start, 2 * kPatience) << path;
        if (fs::file_size(path) <= kLargest)
            seeds.push_back(path);
    }
    if (seeds.empty())
        GTEST_SKIP() << "neither a corpus nor what scripts/make-audio-matrix makes";
    readMutations(seeds, 2 * kPatience,
                  [](const auto& path) { return readPath(path).duration.has_value(); });
}

} // namespace

} // namespace quorel::test
