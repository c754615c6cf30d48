// quorel-cli playlist: the audio files that a playlist file leads to.
#include "media/M3U8.h"
#include "model/Path.h"
#include "tools/quorel-cli/CommandLine.h"
#include "tools/quorel-cli/Console.h"
#include "tools/quorel-cli/PathList.h"

namespace quorel::cli {

namespace {

constexpr Option kOptions[] = {kAsObjects};

int run(const Arguments& arguments) {
    if (arguments.operands.size() > 1) {
        return wrongUsage(kPlaylistCommand,
                          '"' + arguments.operands[1] + "\" is one word too many");
    }
    const QString file = pathFromBytes(arguments.operands.front());
    const auto playlist = M3U8::importPlaylist(file);
    if (!playlist) {
        return fail(printable(pathForDisplay(file)) +
                    QStringLiteral(": no playlist in UTF-8 can be read from it"));
    }
    printPaths(playlist->paths, arguments.has(kAsObjects.name));
    return kSuccess;
}

} // namespace

const Command kPlaylistCommand = {
    "playlist",
    "FILE.m3u8",
    "Lists the audio files that a playlist leads to, in its order.",
    "Prints their absolute paths, one a line. Entries that are missing or no audio are left out.",
    kOptions,
    run};

} // namespace quorel::cli
