// The other program of a drag: a window that files are dragged from and dropped on, and that looks
// at the screen. It obeys lines on standard input and answers each of them with one:
//   files URI...   what is dragged from it from now on        -> ok
//   colour X Y     of a pixel of the screen                   -> #rrggbb
// and tells what happens: "ended" and "finished" of its own drag, "moved" and "dropped URI..." of
// another's.
#include <QApplication>
#include <QDrag>
#include <QDragEnterEvent>
#include <QLabel>
#include <QMimeData>
#include <QScreen>
#include <QSocketNotifier>
#include <QThread>
#include <iostream>
#include <sstream>

namespace {

void say(const QByteArray& line) {
    std::cout << line.constData() << std::endl;
}

class Dragger final : public QLabel {
  public:
    Dragger() {
        setText(QStringLiteral("drag"));
        setAcceptDrops(true);
    }

    QByteArray files;

  protected:
    void mousePressEvent(QMouseEvent*) override {}

    void mouseMoveEvent(QMouseEvent*) override {
        auto* const drag = new QDrag(this);
        auto* const content = new QMimeData;
        content->setData(QStringLiteral("text/uri-list"), files);
        drag->setMimeData(content);
        // When the other program has said that it is done with what was dropped.
        connect(drag, &QObject::destroyed, this, [] { say("finished"); });
        drag->exec(Qt::CopyAction);
        say("ended");
    }

    void dragEnterEvent(QDragEnterEvent* event) override { event->acceptProposedAction(); }

    void dragMoveEvent(QDragMoveEvent* event) override {
        say("moved");
        event->acceptProposedAction();
    }

    void dropEvent(QDropEvent* event) override {
        say("dropped " + event->mimeData()->data(QStringLiteral("text/uri-list")).simplified());
        event->acceptProposedAction();
    }
};

} // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    Dragger dragger;
    dragger.setWindowTitle(QStringLiteral("dragger"));
    dragger.setGeometry(1000, 100, 200, 200);
    dragger.show();
    // Also while a drag waits in a loop of its own.
    const QSocketNotifier input(0, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, [&dragger] {
        std::string line;
        if (!std::getline(std::cin, line))
            return QCoreApplication::quit();
        std::istringstream words(line);
        std::string command;
        words >> command;
        if (command == "files") {
            dragger.files.clear();
            for (std::string uri; words >> uri;)
                dragger.files += QByteArray::fromStdString(uri) + "\r\n";
            say("ok");
        } else {
            int x = 0;
            int y = 0;
            words >> x >> y;
            const QImage pixel =
                QGuiApplication::primaryScreen()->grabWindow(0, x, y, 1, 1).toImage();
            say(pixel.pixelColor(0, 0).name().toLatin1());
        }
    });
    return QApplication::exec();
}
