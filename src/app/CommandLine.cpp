#include "app/CommandLine.h"

#include "model/Path.h"
#include "storage/Files.h"

namespace quorel {

namespace {

QString usage() {
    return QStringLiteral("Usage: quorel [--output null|default|UID] [FILES, FOLDERS or "
                          "PLAYLISTS]\n\n"
                          "Opens the player. Files are added to the shown playlist, and the first "
                          "of them plays;\na playlist file opens as a playlist of its own. If "
                          "Quorel runs already, it takes them over.\n\n"
                          "  --output null     without sound\n"
                          "  --output default  on the system's default device\n"
                          "  --output UID      on that device (quorel-cli devices lists them)\n"
                          "  --version         the version\n"
                          "  --help            this text");
}

CommandLine::Answer wrong(const QString& what) {
    return {QStringLiteral("quorel: %1\nTry \"quorel --help\".").arg(what), 2};
}

} // namespace

CommandLine CommandLine::parse(const QList<QByteArray>& arguments) {
    CommandLine line;
    const QByteArray here = workingFolder();
    bool onlyPaths = false;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QByteArray& argument = arguments.at(i);
        if (onlyPaths || !argument.startsWith('-') || argument == "-") {
            line.paths += pathFromBytes(absolutePath(argument, here));
        } else if (argument == "--") {
            onlyPaths = true;
        } else if (argument == "--help" || argument == "-h") {
            line.answer = Answer{usage(), 0};
            return line;
        } else if (argument == "--version") {
            line.answer = Answer{QStringLiteral("quorel " QUOREL_VERSION), 0};
            return line;
        } else if (argument == "--output") {
            if (++i == arguments.size()) {
                line.answer = wrong(QStringLiteral("--output needs null, default or a device."));
                return line;
            }
            const QString output = QString::fromUtf8(arguments.at(i));
            line.nullOutput = output == QLatin1String("null");
            line.outputUid =
                output == QLatin1String("default") || line.nullOutput ? QString() : output;
        } else {
            line.answer =
                wrong(QStringLiteral("there is no option %1.").arg(QString::fromUtf8(argument)));
            return line;
        }
    }
    return line;
}

} // namespace quorel
