#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace quorel::cli {

/// The text without control characters: one that stands in a file's name must not reach a terminal.
QString printable(QString text);

/// A line on standard output, or on standard error; the text as it is.
void printLine(std::string_view text);
void printToStandardError(std::string_view text);

/// A line on standard error that says what is wrong, after the program's name.
void printProblem(std::string_view text);
void printProblem(const QString& text);

/// printProblem; returns the exit status for a failure.
int fail(const QString& text);

/// Writes out what standard output still holds. False if anything printed there was lost.
bool flushOutput();

} // namespace quorel::cli
