// The command line program: finds the command and hands it its arguments.
#include "tools/quorel-cli/CommandLine.h"
#include "tools/quorel-cli/Console.h"

#include <algorithm>
#include <array>

using namespace quorel::cli;

namespace {

constexpr std::array kCommands = {&kPlayCommand,   &kRenderCommand,  &kAnalyzeCommand,
                                  &kTagCommand,    &kCollectCommand, &kPlaylistCommand,
                                  &kDevicesCommand};
constexpr std::string_view kUsage = "usage: quorel-cli COMMAND [OPTIONS] ..., or quorel-cli --help";

void printHelp() {
    printLine("usage: quorel-cli COMMAND [OPTIONS] ...\n\n"
              "Quorel's engine and library without a window. The commands:\n");
    for (const Command* command : kCommands) {
        std::string line = "  " + std::string(command->name);
        line.resize(12, ' ');
        printLine(line + std::string(command->summary));
    }
    printLine("\nquorel-cli COMMAND --help says more; quorel-cli --version names the version.");
    printLine("Exit status: 0, 1 for a failure, 2 for wrong usage.");
}

int wrongUsageOfAll(const std::string& what) {
    printProblem(what);
    printToStandardError(kUsage);
    return kWrongUsage;
}

int runCommand(const Command& command, std::span<const char* const> words) {
    const ParsedArguments parsed = parse(command, words);
    if (parsed.helpWanted) {
        printLine(help(command));
        return kSuccess;
    }
    if (!parsed.error.empty()) {
        return wrongUsage(command, parsed.error);
    }
    return command.run(parsed.arguments);
}

int run(std::span<const char* const> words) {
    if (words.empty()) {
        return wrongUsageOfAll("no command is given");
    }
    const std::string_view word = words.front();
    if (word == "--help") {
        printHelp();
        return kSuccess;
    }
    if (word == "--version") {
        printLine("quorel-cli " QUOREL_VERSION);
        return kSuccess;
    }
    const auto found = std::ranges::find(kCommands, word, &Command::name);
    if (found == kCommands.end()) {
        return wrongUsageOfAll("there is no command \"" + std::string(word) + '"');
    }
    return runCommand(**found, words.subspan(1));
}

} // namespace

int main(int argc, char** argv) {
    const std::span<const char* const> words(argv, static_cast<std::size_t>(argc));
    const int status = run(words.subspan(words.empty() ? 0 : 1));
    if (!flushOutput() && status == kSuccess) {
        return fail(QStringLiteral("standard output could not be written"));
    }
    return status;
}
