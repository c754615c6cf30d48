#include "tools/quorel-cli/Console.h"

#include "tools/quorel-cli/CommandLine.h"

#include <cstdio>

namespace quorel::cli {

namespace {

void print(std::FILE* file, std::string text) {
    text += '\n';
    std::fwrite(text.data(), 1, text.size(), file);
}

} // namespace

QString printable(QString text) {
    for (QChar& c : text) {
        if (c.category() == QChar::Other_Control) {
            c = QChar::ReplacementCharacter;
        }
    }
    return text;
}

void printLine(std::string_view text) {
    print(stdout, std::string(text));
}

void printToStandardError(std::string_view text) {
    print(stderr, std::string(text));
}

void printProblem(std::string_view text) {
    print(stderr, "quorel-cli: " + std::string(text));
}

void printProblem(const QString& text) {
    printProblem(std::string_view(text.toStdString()));
}

int fail(const QString& text) {
    printProblem(text);
    return kFailure;
}

bool flushOutput() {
    return std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
}

} // namespace quorel::cli
