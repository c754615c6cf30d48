// The program with a window.
#include "app/CommandLine.h"
#include "app/QuorelApp.h"
#include "desktop/ActivationToken.h"
#include "desktop/SingleInstance.h"
#include "storage/Persistence.h"
#include "ui/theme/ApplyTheme.h"

#include <fontconfig/fontconfig.h>

#include <QApplication>
#include <cstdio>
#include <cstdlib>
#include <future>

using namespace quorel;

namespace {

/// Qt aborts where it finds no display: that is no crash, and needs no more than a sentence.
void sayWithoutDisplay(QtMsgType type, const QMessageLogContext&, const QString&) {
    if (type != QtFatalMsg)
        return;
    std::fputs("quorel: There is no display. \"quorel-cli play\" plays without one.\n", stderr);
    std::_Exit(EXIT_FAILURE);
}

} // namespace

int main(int argc, char* argv[]) {
    const CommandLine line = CommandLine::parse({argv + 1, argv + argc});
    if (line.answer) {
        std::fprintf(line.answer->status == 0 ? stdout : stderr, "%s\n",
                     qUtf8Printable(line.answer->text));
        return line.answer->status;
    }
    const QString stateFile = Persistence::dataURL();
    SingleInstance instance(stateFile);
    if (!instance.isFirst()) {
        if (instance.handOver(line.paths, launchActivationToken()))
            return EXIT_SUCCESS;
        if (!instance.isFirst()) {
            std::fprintf(stderr, "quorel: %s\n", qUtf8Printable(SingleInstance::noAnswerNotice()));
            return EXIT_FAILURE;
        }
    }
    // Meanwhile Qt connects to the display.
    auto loading = std::async(std::launch::async, LoadedState::of, stateFile);
    // The fonts' configuration is dozens of files, which the first text would read.
    const auto fonts = std::async(std::launch::async, ::FcInit);
    const QtMessageHandler usual = qInstallMessageHandler(sayWithoutDisplay);
    QApplication application(argc, argv);
    qInstallMessageHandler(usual);
    QApplication::setApplicationName(QStringLiteral("Quorel"));
    QApplication::setApplicationVersion(QStringLiteral(QUOREL_VERSION));
    QGuiApplication::setDesktopFileName(QStringLiteral("quorel"));
    fonts.wait(); // whoever comes before its end reads everything once more
    applyTheme(application);
    QuorelApp app(line, stateFile, std::move(loading), instance);
    app.show();
    return QApplication::exec();
}
