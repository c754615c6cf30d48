#pragma once

#include <QStringList>
#include <optional>

namespace quorel {

/// What the user asked for when starting the program.
struct CommandLine {
    QStringList paths; ///< absolute; files, folders and playlists
    bool nullOutput = false;
    std::optional<QString> outputUid; ///< empty: the system's default device

    /// What there is to say instead of starting, and the exit status with it.
    struct Answer {
        QString text;
        int status = 0; ///< 0, or 2 for wrong usage, which goes to standard error
    };
    std::optional<Answer> answer;

    /// `arguments` are the process's, without its name; paths begin at the working folder.
    static CommandLine parse(const QList<QByteArray>& arguments);
};

} // namespace quorel
