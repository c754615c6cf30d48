// The least that a program of Qt Widgets can show: what the start of a larger one is held against.
#include <QApplication>
#include <QMainWindow>

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QMainWindow window;
    window.resize(560, 600);
    window.show();
    return QApplication::exec();
}
