// How a large file is tagged; then reading what files say of themselves: files a second, warm, on
// one thread, beside ffprobe and mediainfo on the same files in the same run. Seconds are the
// processor's there, so that what else the machine does counts little. The other programs' starting
// is left out: ffprobe takes one file at a time, so what it needs to tell its version is
// subtracted; mediainfo takes many, so what it needs for one is.
#include "media/tags/ID3Writer.h"
#include "media/tags/MetadataReader.h"
#include "model/Path.h"
#include "support/AudioFixtures.h"
#include "support/Mutation.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

using namespace quorel;

namespace {

namespace fs = std::filesystem;

constexpr int kRate = 44100;
constexpr int64_t kFrames = int64_t{200} * kRate;
constexpr int kCopies = 100; // of each file, under names of their own

struct Kind {
    std::string name;
    std::vector<std::string> command; // before the input and the output
    double least = 0;                 // files a second that the player promises itself
};

const std::vector<Kind>& kinds() {
    static const std::vector<std::string> tags{
        "--id3v2-only", "--tt", "Title", "--ta", "Artist", "--tl", "Album", "--ti", "cover.jpg"};
    static const auto lame = [](std::vector<std::string> options) {
        options.insert(options.begin(), {"lame", "--quiet"});
        options.insert(options.end(), tags.begin(), tags.end());
        return options;
    };
    static const std::vector<Kind> all{
        {"xing.mp3", lame({"-V2"}), 10'000},
        {"plain.mp3", lame({"-b", "192", "--cbr", "-t"}), 500},
        {"cover.flac",
         {"flac", "-s", "-f", "--picture=cover.jpg", "-TTITLE=Title", "-TARTIST=Artist",
          "-TALBUM=Album", "-o"},
         10'000},
        {"cover.m4a", {"ffmpeg", "-v", "quiet", "-nostdin", "-y", "-i"}, 10'000},
    };
    return all;
}

double cpuSeconds(int who) {
    rusage usage{};
    ::getrusage(static_cast<__rusage_who>(who), &usage);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

/// The files measured, made in a folder that the program then works in.
class Library {
  public:
    Library() {
        fs::current_path(folder_.path(""));
        test::TestSound sound(kFrames, 2, 16);
        double held[2] = {}; // noise with the treble of music, which codecs can bear
        for (std::size_t i = 0; i < sound.samples.size(); ++i) {
            held[i % 2] += 0.1 * (sound.samples[i] - held[i % 2]);
            sound.samples[i] = static_cast<int32_t>(held[i % 2]);
        }
        folder_.write("in.wav", test::wavBytes(sound));
        test::runTool({"ffmpeg", "-v", "quiet", "-y", "-f", "lavfi", "-i",
                       "nullsrc=s=500x500,geq=random(1)*255:128:128", "-frames:v", "1",
                       "cover.jpg"});
        for (const Kind& kind : kinds()) {
            make(kind);
        }
    }

    /// Empty where what encodes the kind is missing.
    std::vector<std::string> files(const Kind& kind) const {
        std::vector<std::string> names;
        for (int i = 0; i < kCopies && fs::exists(kind.name); ++i) {
            names.push_back(std::to_string(i) + kind.name);
            if (!fs::exists(names.back())) {
                fs::create_hard_link(kind.name, names.back());
            }
        }
        return names;
    }

  private:
    static void make(const Kind& kind) {
        std::vector<std::string> command = kind.command;
        if (command.front() == "ffmpeg") {
            command.insert(
                command.end(),
                {"in.wav",       "-i",          "cover.jpg",   "-map",      "0",
                 "-map",         "1",           "-c:v",        "copy",      "-disposition:v",
                 "attached_pic", "-metadata",   "title=Title", "-metadata", "artist=Artist",
                 "-metadata",    "album=Album", "-c:a",        "aac",       "-b:a",
                 "192k",         kind.name});
        } else if (command.front() == "flac") {
            command.insert(command.end(), {kind.name, "in.wav"});
        } else {
            command.insert(command.end(), {"in.wav", kind.name});
        }
        test::runTool(command);
    }

    test::TemporaryFolder folder_;
};

double ourRate(const std::vector<std::string>& files) {
    constexpr double kSeconds = 1;
    std::vector<QString> paths(files.size());
    std::transform(files.begin(), files.end(), paths.begin(), QString::fromStdString);
    const auto readAll = [&paths] {
        for (const QString& path : paths) {
            if (MetadataReader::read(path).album != QStringLiteral("Album")) {
                std::printf("%s was not read\n", qPrintable(path));
            }
        }
    };
    readAll();
    const double start = cpuSeconds(RUSAGE_THREAD);
    double taken = 0;
    int64_t count = 0;
    for (; taken < kSeconds; taken = cpuSeconds(RUSAGE_THREAD) - start) {
        readAll();
        count += static_cast<int64_t>(paths.size());
    }
    return static_cast<double>(count) / taken;
}

double secondsOf(const std::vector<std::string>& command) {
    const double start = cpuSeconds(RUSAGE_CHILDREN);
    return test::runTool(command) ? cpuSeconds(RUSAGE_CHILDREN) - start : -1;
}

// 0 where the program fails or is not there.
double ffprobeRate(const std::vector<std::string>& files) {
    constexpr std::size_t kFiles = 20;
    double taken = 0;
    for (std::size_t i = 0; i < kFiles; ++i) {
        const double all = secondsOf(
            {"ffprobe", "-v", "quiet", "-show_format", "-show_streams", "-of", "json", files[i]});
        const double starting = secondsOf({"ffprobe", "-version"});
        if (all < 0 || starting < 0) {
            return 0;
        }
        taken += all - starting;
    }
    return kFiles / std::max(taken, 1e-6);
}

double mediainfoRate(const std::vector<std::string>& files) {
    std::vector<std::string> command{"mediainfo", "--Output=JSON", files.front()};
    const double one = secondsOf(command);
    command.insert(command.end(), files.begin() + 1, files.end());
    const double all = secondsOf(command);
    return one < 0 || all < 0 ? 0 : static_cast<double>(files.size() - 1) / (all - one);
}

std::string against(double ours, double theirs) {
    char text[64] = "not there";
    if (theirs > 0) {
        std::snprintf(text, sizeof text, "%8.0f (1/%.0f)", theirs, ours / theirs);
    }
    return text;
}

void printRates(const Library& library) {
    std::printf("%-12s %12s %12s  %-20s %-20s\n", "files/s", "Quorel", "target", "ffprobe",
                "mediainfo");
    for (const Kind& kind : kinds()) {
        const std::vector<std::string> files = library.files(kind);
        if (files.empty()) {
            std::printf("%-12s what encodes it is not installed\n", kind.name.c_str());
            continue;
        }
        const double ours = ourRate(files);
        std::printf("%-12s %12.0f %9s %.0f  %-20s %-20s %.1f MB%s\n", kind.name.c_str(), ours,
                    ">=", kind.least, against(ours, ffprobeRate(files)).c_str(),
                    against(ours, mediainfoRate(files)).c_str(),
                    static_cast<double>(fs::file_size(kind.name)) / 1e6,
                    ours < kind.least ? "  MISSED" : "");
    }
}

// Before all else, while the process is small: memory is told by the most that it has ever had.
void printLargeFile() {
    constexpr int64_t kBytes = 300'000'000;
    const test::TemporaryFolder folder;
    const std::string path = folder.path("large.mp3");
    std::string megabyte(1'000'000, '\x55');
    for (int64_t written = 0; written < kBytes; written += static_cast<int64_t>(megabyte.size())) {
        std::FILE* file = std::fopen(path.c_str(), "ab");
        std::fwrite(megabyte.data(), 1, megabyte.size(), file);
        std::fclose(file);
    }
    ID3Writer::Tags tags;
    tags.title = QStringLiteral("Title");
    const int64_t before = test::peakMemory();
    const auto start = std::chrono::steady_clock::now();
    const auto error = ID3Writer::writeTags(QString::fromStdString(path), tags);
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    std::printf("tagging 300 MB: %s, %.2f s to the disk, %.1f MiB more memory\n\n",
                error ? qPrintable(error->description) : "done", taken.count(),
                static_cast<double>(test::peakMemory() - before) / (1 << 20));
}

} // namespace

int main() {
    printLargeFile();
    printRates(Library());
    return 0;
}
