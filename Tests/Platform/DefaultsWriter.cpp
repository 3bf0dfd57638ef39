// One of several processes that write to one domain:
//
//     DefaultsWriter <folder> <domain> <prefix> <count>
//
// Waits for a line on standard input, then sets <prefix>0, <prefix>1, … each in a turn of its own,
// and ends when the last is written.
#include "Platform/FileDefaultsStore.h"

#include <QCoreApplication>
#include <QTimer>

#include <cstdio>

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 5)
        return 2;
    const QString prefix = arguments[3];
    const qlonglong count = arguments[4].toLongLong();
    Bralto::FileDefaultsStore store(arguments[1], arguments[2]);

    if (std::getchar() == EOF)
        return 2;
    qlonglong next = 0;
    QTimer turn;
    QObject::connect(&turn, &QTimer::timeout, &turn, [&] {
        if (next == count)
            return QCoreApplication::quit();
        store.set(prefix + QString::number(next), next);
        ++next;
    });
    turn.start(0);
    return QCoreApplication::exec();
}
