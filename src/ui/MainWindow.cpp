#include "MainWindow.h"

using namespace Qt::StringLiterals;

MainWindow::MainWindow(QWidget *parent)
    : QMainWindow(parent)
{
    setWindowTitle(u"Morvane"_s);
    resize(1100, 700);
}
