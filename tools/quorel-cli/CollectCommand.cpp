// quorel-cli collect: what the player would take from files and folders.
#include "media/AudioFiles.h"
#include "model/Path.h"
#include "tools/quorel-cli/CommandLine.h"
#include "tools/quorel-cli/PathList.h"

namespace quorel::cli {

namespace {

constexpr Option kOptions[] = {kAsObjects};

int run(const Arguments& arguments) {
    QStringList given;
    for (const std::string& operand : arguments.operands) {
        given += pathFromBytes(operand);
    }
    printPaths(collectAudioFiles(given), arguments.has(kAsObjects.name));
    return kSuccess;
}

} // namespace

const Command kCollectCommand = {
    "collect",
    "PATHS...",
    "Lists the audio files among and below files and folders, in the order of a file browser.",
    "Prints their absolute paths, one a line. Hidden entries, and what cannot be read, are left "
    "out.",
    kOptions,
    run};

} // namespace quorel::cli
