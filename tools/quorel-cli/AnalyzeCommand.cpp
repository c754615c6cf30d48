// quorel-cli analyze: what is measured of files, apart from playing them.
#include "audio/analysis/TrackAnalysis.h"
#include "media/tags/MetadataReader.h"
#include "model/Path.h"
#include "tools/quorel-cli/CommandLine.h"
#include "tools/quorel-cli/Console.h"
#include "tools/quorel-cli/MetadataJson.h"
#include "tools/quorel-cli/OpenTrack.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace quorel::cli {

namespace {

constexpr Option kOptions[] = {
    {"--trim-threshold", "DB", "what is no louder is silence; -200 to 0 dBFS, else -60"},
    {"--trim-max", "SEC", "the longest silence to leave out at either end; 0 to 3600, else 5"},
    {"--no-bpm", "", "leave out the tempo"},
};

struct Wishes {
    double trimThresholdDb;
    double trimMaxSec;
    bool bpm;
};

QJsonObject analyse(AudioFile& file, const Wishes& wishes) {
    QJsonObject object;
    if (const auto trim = computeTrim(file, wishes.trimThresholdDb, wishes.trimMaxSec)) {
        object.insert(QStringLiteral("trim"), QJsonObject{{QStringLiteral("start"), trim->start},
                                                          {QStringLiteral("end"), trim->end}});
    }
    if (const auto levels = computeLevels(file)) {
        object.insert(QStringLiteral("levels"), QJsonObject{{QStringLiteral("peak"), levels->peak},
                                                            {QStringLiteral("rms"), levels->rms}});
    }
    if (wishes.bpm) {
        const auto bpm = detectBPM(file);
        object.insert(QStringLiteral("bpm"), bpm ? QJsonValue(*bpm) : QJsonValue());
    }
    return object;
}

/// False when the file cannot be opened.
bool report(const std::string& path, const Wishes& wishes) {
    const OpenedAudioFile opened = AudioFile::open(path);
    const QString name = pathFromBytes(QByteArrayView(path));
    QJsonObject object;
    if (opened.file) {
        object = analyse(*opened.file, wishes);
        object.insert(QStringLiteral("metadata"), toJson(MetadataReader::read(name)));
    } else {
        const QString error = QString::fromStdString(opened.error);
        printProblem(aboutFile(path, error));
        object.insert(QStringLiteral("error"), error);
    }
    object.insert(QStringLiteral("path"), name);
    printLine(QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString());
    return opened.file != nullptr;
}

int run(const Arguments& arguments) {
    const std::string threshold = arguments.value("--trim-threshold", "-60");
    const auto thresholdDb = realNumber(threshold, -200, 0);
    if (!thresholdDb) {
        return wrongUsage(kAnalyzeCommand,
                          "--trim-threshold: \"" + threshold + "\" is not -200 to 0");
    }
    const std::string longest = arguments.value("--trim-max", "5");
    const auto maxSec = realNumber(longest, 0, 3600);
    if (!maxSec) {
        return wrongUsage(kAnalyzeCommand, "--trim-max: \"" + longest + "\" is not 0 to 3600");
    }
    int status = kSuccess;
    for (const std::string& path : arguments.operands) {
        if (!report(path, {*thresholdDb, *maxSec, !arguments.has("--no-bpm")})) {
            status = kFailure;
        }
        if (!flushOutput()) { // each line is there as soon as it is known
            return fail(QStringLiteral("standard output could not be written"));
        }
    }
    return status;
}

} // namespace

const Command kAnalyzeCommand = {
    "analyze",
    "FILES...",
    "Measures files: tags, silence at their ends, levels, tempo.",
    "Prints a JSON object for each file, one a line: path, metadata (what its tags and its head\n"
    "say), trim (start and end of the sound, in seconds), levels (peak and rms, full scale is 1)\n"
    "and bpm (null without a clear beat), or path and error. What cannot be read or measured is\n"
    "left out. The status is 1 if a file cannot be opened.",
    kOptions,
    run};

} // namespace quorel::cli
