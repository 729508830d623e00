// The smallest program with a Qt main window, which Brindle's start is compared with.

#include "FirstPaint.h"

#include <QApplication>
#include <QMainWindow>

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    EndAtFirstPaint end;
    qApp->installEventFilter(&end);
    QMainWindow window;
    window.resize(900, 600);
    window.show();
    end.begin();
    return QApplication::exec();
}
