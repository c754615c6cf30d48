#pragma once

#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quorel::cli {

/// An option of a command. One that takes a value stands as "--rate 48000" or "--rate=48000".
struct Option {
    std::string_view name;  ///< with its hyphens, such as "--rate" or "-o"
    std::string_view value; ///< what the value is called in the help; empty for a switch
    std::string_view help;
    bool required = false;
};

/// What was given to a command. Everything is the bytes of the command line.
struct Arguments {
    std::map<std::string_view, std::string> options; ///< by name; the last one given counts
    std::vector<std::string> operands;

    bool has(std::string_view name) const { return options.contains(name); }
    /// The option's value, or `otherwise` where it was not given.
    std::string value(std::string_view name, std::string_view otherwise) const;
};

/// One command of the program, in a file of its own.
struct Command {
    std::string_view name;
    std::string_view operands; ///< what they are called, such as "FILES..."; empty for none allowed
    std::string_view summary;
    std::string_view details; ///< lines for its own help; may be empty
    std::span<const Option> options;
    int (*run)(const Arguments&); ///< returns the exit status
};

extern const Command kPlayCommand;
extern const Command kRenderCommand;
extern const Command kAnalyzeCommand;
extern const Command kCollectCommand;
extern const Command kPlaylistCommand;
extern const Command kTagCommand;
extern const Command kDevicesCommand;

} // namespace quorel::cli
