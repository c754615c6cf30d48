#include "audio/decode/EncodedFiles.h"
#include "support/Mutation.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

namespace quorel::test {

namespace {

struct Refused {
    std::string bytes;
    const char* reason;
};

void expectReasons(const TemporaryFolder& folder, std::initializer_list<Refused> cases) {
    for (const Refused& refused : cases) {
        const auto opened = AudioFile::open(folder.write("refused", refused.bytes));
        EXPECT_FALSE(opened.file) << refused.reason;
        EXPECT_THAT(opened.error, testing::HasSubstr(refused.reason));
    }
}

// The bytes with `to` written `offset` bytes behind the start of a name.
std::string changed(std::string bytes, const std::string& name, std::size_t offset,
                    const std::string& to) {
    return bytes.replace(bytes.rfind(name) + offset, to.size(), to);
}

class Refusal : public EncodedFileTest {
  protected:
    std::string encoded(const char* name, const std::vector<std::string>& codec) const {
        return encodeWith(folder, name, sound, codec);
    }
    const TestSound sound{5000, 2, 16};
};

TEST_F(Refusal, TellsWhyOfWav) {
    const std::string plain = wavBytes(sound);
    expectReasons(folder,
                  {{wavBytes(sound, {.tag = 0x31}), "compressed"},
                   {wavBytes(sound, {.tag = 0x161, .mask = 3}), "compressed"},
                   {wavBytes(TestSound(100, 9, 16)), "9 channels"},
                   {wavBytes(sound, {.sampleRate = 0}), "0 Hz"},
                   {wavBytes(TestSound(100, 2, 24), {.tag = 3, .containerBytes = 3}), "24 bits"},
                   {plain.substr(0, 12), "format"},
                   {plain.substr(0, 36), "without sound"}});
}

TEST_F(Refusal, TellsWhyOfAiffCafAndFlac) {
    const std::string aiff = encoded("a.aiff", {"-c:a", "pcm_s16be"});
    const std::string caf = encoded("a.caf", {"-c:a", "alac", "-sample_fmt", "s16p"});
    const std::string flac = encoded("a.flac", {"-c:a", "flac"});
    expectReasons(folder, {{aiff.substr(0, 12), "description of its format"},
                           {changed(aiff, "COMM", 8, std::string(2, '\0')), "0 channels"},
                           {changed(aiff, "COMM", 16, "\x7F\xFF"), "sampling rate"},
                           {changed(aiff, "COMM", 14, std::string("\0\x40", 2)), "compressed"},
                           {changed(aiff, "SSND", 0, "none"), "without sound"},
                           {caf.substr(0, 20), "0 channels"},
                           {changed(caf, "pakt", 0, "none"), "table of packets"},
                           {changed(caf, "kuki", 0, "none"), "decoder needs"},
                           {changed(caf, "desc", 20, "ima4"), "not supported"},
                           {flac.substr(0, 41), "description of its format"},
                           {flac.substr(0, flac.find("\xFF\xF8", 42) + 200), "whole frame"}});
}

TEST_F(Refusal, TellsWhyOfMp4) {
    const std::string plain = encoded("a.m4a", {"-c:a", "aac"});
    const std::size_t data = plain.find("mdat");
    const std::size_t bytes = plain.find("moov") - data - 8;
    expectReasons(folder,
                  {{encoded("b.mp4", {"-c:a", "ac3"}), "AC-3"},
                   {encoded("c.mp4", {"-c:a", "eac3"}), "E-AC-3"},
                   {changed(plain, "mp4a", 0, "Opus"), "Opus"},
                   {changed(plain, "mp4a", 0, "drms"), "protected"},
                   {changed(plain, "mp4a", 0, "enca"), "protected"},
                   {changed(plain, "soun", 0, "vide"), "without sound"},
                   {plain.substr(0, plain.size() / 2), "table of contents"},
                   {changed(plain, "mdat", 4, std::string(bytes, '\0')), "cannot make out"}});
}

TEST(AudioFileOpen, RefusesWhatIsNoAudioFileAtOnce) {
    const TemporaryFolder folder;
    std::minstd_rand random(5);
    std::string noise;
    for (int i = 0; i < 3'000'000; ++i)
        noise += static_cast<char>(random() >> 8);
    const std::string falseFrames = "\xFF\xFB\x90\x64 more \xFF\xF1\x50\x80\x01\x7F\xFC" +
                                    std::string(3000, '\xFF') + std::string(700, 'x');
    const std::string locked = folder.write("locked.wav", wavBytes(TestSound(10, 2, 16)));
    ::chmod(locked.c_str(), 0);
    const auto grown = [&](const char* name, const std::string& bytes) { // with zeros
        std::filesystem::resize_file(folder.write(name, bytes), 100'000'000);
        return folder.path(name);
    };
    const std::tuple<std::string, const char*> cases[] = {
        {folder.path(""), "not a regular file"},
        {"/dev/zero", "not a regular file"},
        {folder.path("absent.wav"), "No such file"},
        {grown("noise.mp3", noise), "known format"},
        {grown("zeros.mp3", ""), "known format"},
        {grown("sync_everywhere.mp3", std::string(3'000'000, '\xFF')), "known format"},
        {folder.write("lone_header.mp3", "\xFF\xFB\x90\x64" + std::string(4000, '\0')),
         "known format"},
        {folder.write("chained_to_nothing.mp3", falseFrames + falseFrames), "known format"},
        {folder.write("endless_tag.mp3", std::string("ID3\4\0\0\x7F\x7F\x7F\x7F", 10)),
         "known format"},
        {folder.write("text.wav", "#EXTM3U\nhttp://localhost/a.mp3\n"), "known format"},
        {folder.write("tag.mp3", std::string("ID3\4\0\0\0\0\0\1\0", 11)), "known format"},
        {folder.write("head.flac", "fLaC" + noise), "without"},
    };
    for (const auto& [path, reason] : cases) {
        const double start = processorSeconds();
        const auto opened = AudioFile::open(path);
        EXPECT_FALSE(opened.file) << path;
        EXPECT_THAT(opened.error, testing::HasSubstr(reason)) << path;
        EXPECT_LT(processorSeconds() - start, 0.25 * kPatience) << path;
    }
    if (::geteuid() != 0) { // to whom nothing is locked
        EXPECT_THAT(AudioFile::open(locked).error, testing::HasSubstr("denied"));
    }
}

} // namespace

} // namespace quorel::test
