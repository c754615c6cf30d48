// quorel-cli tag: a fresh tag for an MP3 file.
#include "media/tags/ID3Writer.h"
#include "model/Path.h"
#include "storage/Files.h"
#include "tools/quorel-cli/CommandLine.h"
#include "tools/quorel-cli/Console.h"
#include "tools/quorel-cli/OpenTrack.h"

#include <array>
#include <climits>

namespace quorel::cli {

namespace {

using Tags = ID3Writer::Tags;

struct TextOption {
    Option option;
    QString Tags::*field;
};
constexpr std::array kTexts{
    TextOption{{"--title", "T", "the track's title"}, &Tags::title},
    TextOption{{"--artist", "T", "who plays it"}, &Tags::artist},
    TextOption{{"--album", "T", "the album's title"}, &Tags::album},
    TextOption{{"--album-artist", "T", "whose album it is"}, &Tags::albumArtist},
    TextOption{{"--genre", "T", "the genre"}, &Tags::genre},
    TextOption{{"--year", "T", "the year"}, &Tags::year},
    TextOption{{"--composer", "T", "who wrote it"}, &Tags::composer},
    TextOption{{"--comment", "T", "a comment"}, &Tags::comment},
};

struct NumberOption {
    Option option;
    std::optional<qint64> Tags::*number;
    std::optional<qint64> Tags::*total;
};
constexpr std::array kNumbers{
    NumberOption{{"--track", "N[/M]", "the track's number, and how many there are"},
                 &Tags::trackNumber,
                 &Tags::trackTotal},
    NumberOption{{"--disc", "N[/M]", "the disc's number, and how many there are"},
                 &Tags::discNumber,
                 &Tags::discTotal},
};

constexpr auto kOptions = [] {
    std::array<Option, kTexts.size() + kNumbers.size()> options{};
    std::size_t i = 0;
    for (const TextOption& text : kTexts) {
        options[i++] = text.option;
    }
    for (const NumberOption& number : kNumbers) {
        options[i++] = number.option;
    }
    return options;
}();

/// Takes the options over into the tags; says what is wrong with them (one clause).
std::string readOptions(const Arguments& arguments, Tags& tags) {
    for (const TextOption& text : kTexts) {
        const std::string value = arguments.value(text.option.name, {});
        if (!QByteArrayView(value).isValidUtf8()) {
            return std::string(text.option.name) + " is not UTF-8";
        }
        tags.*text.field = QString::fromStdString(value);
    }
    for (const NumberOption& option : kNumbers) {
        if (!arguments.has(option.option.name)) {
            continue;
        }
        const std::string value = arguments.value(option.option.name, {});
        const std::size_t slash = value.find('/');
        const auto number = wholeNumber(value.substr(0, slash), 0, INT_MAX);
        const auto total = slash == std::string::npos
                               ? number
                               : wholeNumber(std::string_view(value).substr(slash + 1), 0, INT_MAX);
        if (!number || !total) {
            return std::string(option.option.name) + ": \"" + value + "\" is no number or N/M";
        }
        tags.*option.number = *number;
        if (slash != std::string::npos) {
            tags.*option.total = *total;
        }
    }
    return {};
}

int run(const Arguments& arguments) {
    if (arguments.operands.size() > 1) {
        return wrongUsage(kTagCommand, '"' + arguments.operands[1] + "\" is one word too many");
    }
    Tags tags;
    if (const std::string problem = readOptions(arguments, tags); !problem.empty()) {
        return wrongUsage(kTagCommand, problem);
    }
    const std::string& file = arguments.operands.front();
    const QByteArray path = absolutePath(QByteArray::fromStdString(file), workingFolder());
    const auto error = ID3Writer::writeTags(pathFromBytes(path), tags);
    return error ? fail(aboutFile(file, error->description)) : kSuccess;
}

} // namespace

const Command kTagCommand = {
    "tag",
    "FILE",
    "Writes a fresh ID3v2.3 tag into an MP3 file.",
    "It replaces the whole tag that stands at the start of the file: what is not given here is "
    "not\n"
    "in it any more. The sound, and an ID3v1 tag behind it, stay as they are.",
    kOptions,
    run};

} // namespace quorel::cli
