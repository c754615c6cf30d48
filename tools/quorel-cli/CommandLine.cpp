#include "tools/quorel-cli/CommandLine.h"

#include "tools/quorel-cli/Console.h"

#include <algorithm>
#include <charconv>

namespace quorel::cli {

namespace {

std::string quoted(std::string_view text) {
    return '"' + std::string(text) + '"';
}

/// What is missing or too much once all words have been read.
std::string incompleteness(const Command& command, const Arguments& arguments) {
    for (const Option& option : command.options) {
        if (option.required && !arguments.has(option.name)) {
            return std::string(option.name) + " is missing";
        }
    }
    if (command.operands.empty() && !arguments.operands.empty()) {
        return quoted(arguments.operands.front()) + " is one word too many";
    }
    if (!command.operands.empty() && arguments.operands.empty()) {
        return "no " + std::string(command.operands) + " given";
    }
    return {};
}

std::string written(const Option& option) {
    std::string text(option.name);
    return option.value.empty() ? text : text + ' ' + std::string(option.value);
}

template <class Number>
std::optional<Number> number(std::string_view text, Number least, Number most) {
    Number value{};
    const char* end = text.data() + text.size();
    const auto [stopped, error] = std::from_chars(text.data(), end, value);
    if (error == std::errc() && stopped == end && value >= least && value <= most) {
        return value;
    }
    return std::nullopt; // NaN too
}

} // namespace

std::string Arguments::value(std::string_view name, std::string_view otherwise) const {
    const auto found = options.find(name);
    return found == options.end() ? std::string(otherwise) : found->second;
}

ParsedArguments parse(const Command& command, std::span<const char* const> words) {
    ParsedArguments result;
    bool optionsEnded = false;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string_view word = words[i];
        if (optionsEnded || word.size() < 2 || word.front() != '-') {
            result.arguments.operands.emplace_back(word);
            continue;
        }
        if (word == "--") {
            optionsEnded = true;
            continue;
        }
        if (word == "--help") {
            result.helpWanted = true;
            return result;
        }
        const std::size_t equals = word.starts_with("--") ? word.find('=') : word.npos;
        const std::string_view name = word.substr(0, equals);
        const auto option = std::ranges::find(command.options, name, &Option::name);
        if (option == command.options.end()) {
            result.error = "there is no option " + quoted(name);
            return result;
        }
        const bool attached = equals != word.npos;
        const bool wantsValue = !option->value.empty();
        if (wantsValue ? !attached && i + 1 == words.size() : attached) {
            result.error = std::string(name) + (wantsValue ? " needs a value" : " takes no value");
            return result;
        }
        result.arguments.options[option->name] = attached     ? word.substr(equals + 1)
                                                 : wantsValue ? words[++i]
                                                              : "";
    }
    result.error = incompleteness(command, result.arguments);
    return result;
}

int wrongUsage(const Command& command, std::string_view what) {
    printProblem(what);
    printToStandardError(usage(command));
    return kWrongUsage;
}

std::string usage(const Command& command) {
    std::string text = "usage: quorel-cli " + std::string(command.name);
    for (const Option& option : command.options) {
        text += option.required ? ' ' + written(option) : " [" + written(option) + ']';
    }
    if (!command.operands.empty()) {
        text += ' ' + std::string(command.operands);
    }
    return text;
}

std::string help(const Command& command) {
    constexpr std::size_t kColumn = 24;
    std::string text = usage(command) + "\n\n" + std::string(command.summary) + '\n';
    if (!command.options.empty()) {
        text += '\n';
    }
    for (const Option& option : command.options) {
        std::string line = "  " + written(option);
        line.resize(std::max(kColumn, line.size() + 2), ' ');
        text += line + std::string(option.help) + '\n';
    }
    if (!command.details.empty()) {
        text += '\n' + std::string(command.details) + '\n';
    }
    text.pop_back();
    return text;
}

std::optional<int> wholeNumber(std::string_view text, int least, int most) {
    return number(text, least, most);
}

std::optional<double> realNumber(std::string_view text, double least, double most) {
    return number(text, least, most);
}

} // namespace quorel::cli
