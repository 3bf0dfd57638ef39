// The least that a program with a window does: the baseline for the start of ours.

#include "App/FirstFrame.h"

#include <QApplication>
#include <QWidget>

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    QWidget window;
    window.resize(1180, 780);
    new Bralto::FirstFrame(&window);
    window.show();
    return QApplication::exec();
}
