#include "tools/quorel-cli/PathList.h"

#include "model/Path.h"
#include "tools/quorel-cli/Console.h"

#include <unistd.h>

#include <QJsonDocument>
#include <QJsonObject>

namespace quorel::cli {

namespace {

std::string line(const QString& path, bool asObject, bool onTerminal) {
    if (asObject) {
        const QJsonObject object{{QStringLiteral("path"), path}};
        return QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString();
    }
    return onTerminal ? printable(pathForDisplay(path)).toStdString()
                      : pathToBytes(path).toStdString();
}

} // namespace

void printPaths(const QStringList& paths, bool asObjects) {
    const bool onTerminal = ::isatty(STDOUT_FILENO) == 1;
    for (const QString& path : paths) {
        printLine(line(path, asObjects, onTerminal));
    }
}

} // namespace quorel::cli
