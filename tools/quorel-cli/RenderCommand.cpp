// quorel-cli render: what the engine would play, in a file.
#include "audio/PlaybackSettings.h"
#include "model/Path.h"
#include "tools/quorel-cli/CommandLine.h"
#include "tools/quorel-cli/Console.h"
#include "tools/quorel-cli/SettingsFile.h"
#include "tools/quorel-cli/Signals.h"
#include "tools/quorel-cli/TrackRun.h"
#include "tools/quorel-cli/WavWriter.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <csignal>

namespace quorel::cli {

namespace {

constexpr int kChannels = 2;
constexpr Option kOptions[] = {
    {"--settings", "FILE", "a JSON record of settings, as the program's state file holds it"},
    {"--rate", "HZ", "8000 to 384000; 48000 if it is not given"},
    {"--gapless", "on|off", "join the tracks without gaps, whatever the settings say"},
    {"-o", "OUT.wav", "the file to write", true},
};

QJsonObject toJson(const RenderedTrack& track) {
    QJsonObject object{{QStringLiteral("path"), pathFromBytes(QByteArrayView(track.path))}};
    if (!track.error.isEmpty()) {
        object.insert(QStringLiteral("error"), track.error);
        return object;
    }
    object.insert(QStringLiteral("start_frame"), static_cast<qint64>(track.start));
    object.insert(QStringLiteral("end_frame"), static_cast<qint64>(track.end));
    object.insert(QStringLiteral("gapless"), track.gapless);
    return object;
}

void printReport(const TrackRun& run, int rate, std::chrono::duration<double> taken) {
    const double seconds = static_cast<double>(run.end()) / rate;
    QJsonArray tracks;
    for (const RenderedTrack& track : run.tracks()) {
        tracks.append(toJson(track));
    }
    const QJsonObject report{{QStringLiteral("frames"), static_cast<qint64>(run.end())},
                             {QStringLiteral("seconds"), seconds},
                             {QStringLiteral("x_realtime"), seconds / taken.count()},
                             {QStringLiteral("tracks"), tracks}};
    printLine(QJsonDocument(report).toJson(QJsonDocument::Compact).toStdString());
}

/// Renders to the end, in pieces of half a second, into the file. False when it was interrupted.
bool renderTo(WavWriter& writer, OfflineRenderer& renderer, const TrackRun& run, int rate) {
    Signals signals({SIGINT, SIGTERM, SIGHUP});
    const int64_t piece = rate / 2;
    std::vector<float> samples;
    while (!run.isFinished() && !writer.hasFailed()) {
        if (signals.take()) {
            return false;
        }
        const int64_t begin = renderer.position() - renderer.engine().latencyFrames();
        samples.clear();
        renderer.render(piece, samples);
        // The file begins with the first frame that is heard and ends with the last.
        const int64_t first = std::clamp<int64_t>(-begin, 0, piece);
        const int64_t last = run.isFinished() ? std::min(run.end() - begin, piece) : piece;
        if (last > first) {
            writer.write(
                std::span(samples).subspan(static_cast<std::size_t>(first * kChannels),
                                           static_cast<std::size_t>((last - first) * kChannels)));
        }
    }
    return true;
}

int renderFiles(const Arguments& arguments, const AppSettings& settings, int rate) {
    const auto begun = std::chrono::steady_clock::now();
    OfflineRenderer renderer({rate, rt::ChannelLayout::usual(kChannels)});
    applySettings(renderer.engine(), settings);

    WavWriter writer(arguments.value("-o", {}), rate, kChannels);
    TrackRun run(renderer, arguments.operands, settings);
    if (writer.hasFailed()) {
        return fail(writer.error());
    }
    run.start();
    if (!run.hasPlayed()) {
        return kFailure; // each file's line has been printed
    }
    if (!renderTo(writer, renderer, run, rate)) {
        return fail(QStringLiteral("interrupted; nothing is written"));
    }
    writer.finish();
    if (writer.hasFailed()) {
        return fail(writer.error());
    }
    printReport(run, rate, std::chrono::steady_clock::now() - begun);
    return kSuccess;
}

int run(const Arguments& arguments) {
    const std::string rateText = arguments.value("--rate", "48000");
    const auto rate = wholeNumber(rateText, 8000, 384000);
    if (!rate) {
        return wrongUsage(kRenderCommand, "--rate: \"" + rateText + "\" is not 8000 to 384000");
    }
    const std::string gapless = arguments.value("--gapless", "on");
    if (gapless != "on" && gapless != "off") {
        return wrongUsage(kRenderCommand, "--gapless: \"" + gapless + "\" is neither on nor off");
    }
    AppSettings settings;
    settings.volume = 1;
    if (arguments.has("--settings")) {
        const ReadSettings read = readSettings(arguments.value("--settings", {}));
        if (!read.error.isEmpty()) {
            return fail(read.error);
        }
        settings = read.settings;
    }
    if (arguments.has("--gapless")) {
        settings.gapless = gapless == "on";
    }
    return renderFiles(arguments, settings, *rate);
}

} // namespace

const Command kRenderCommand = {
    "render",
    "FILES...",
    "Plays files in order as fast as possible into a stereo WAV file of 32-bit floats.",
    "Without --settings everything is at its default and the volume at 1. Fades for pausing, for\n"
    "stopping and for going to another track answer to a listener: here only the fade for "
    "starting\n"
    "is heard, at each track that is not joined to the one before.\n"
    "Prints one JSON object: frames, seconds, x_realtime, and for each of the tracks path,\n"
    "start_frame, end_frame and gapless (joined to the one before), or path and error. Files that\n"
    "cannot be played are passed over; the status is 1 if none can.",
    kOptions,
    run};

} // namespace quorel::cli
