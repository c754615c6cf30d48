#pragma once

#include "tools/quorel-cli/Command.h"

#include <optional>

namespace quorel::cli {

/// Exit statuses of all commands.
inline constexpr int kSuccess = 0;
inline constexpr int kFailure = 1;
inline constexpr int kWrongUsage = 2;

/// A command line taken apart, or what is wrong with it (one clause).
struct ParsedArguments {
    Arguments arguments;
    std::string error;
    bool helpWanted = false; ///< --help stood there: nothing else matters
};

/// `words` are those after the command's name. "--" ends the options.
ParsedArguments parse(const Command& command, std::span<const char* const> words);

/// Says what is wrong and how the command is used, a line each; returns kWrongUsage.
int wrongUsage(const Command& command, std::string_view what);

/// Such as "usage: quorel-cli render [--rate HZ] -o OUT.wav FILES...".
std::string usage(const Command& command);
/// The command's own help.
std::string help(const Command& command);

/// A whole decimal number from `least` to `most`, or nothing.
std::optional<int> wholeNumber(std::string_view text, int least, int most);
/// A decimal number from `least` to `most`, or nothing.
std::optional<double> realNumber(std::string_view text, double least, double most);

} // namespace quorel::cli
