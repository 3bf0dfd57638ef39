#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QList>
#include <QString>

namespace Bralto {

/// What /proc says, for tests that look for processes and descriptors left behind.
namespace ProcessTable {

struct Row {
    qint64 process = 0;
    qint64 parent = 0;
    char state = '?'; ///< 'Z' is a zombie.
    QByteArray environment;
};

inline QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline QList<Row> rows()
{
    QList<Row> result;
    for (const QString& name : QDir("/proc").entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        bool isNumber = false;
        Row row;
        row.process = name.toLongLong(&isNumber);
        const QByteArray stat = isNumber ? contents("/proc/" + name + "/stat") : QByteArray();
        const QList<QByteArray> fields = stat.mid(stat.lastIndexOf(')') + 2).split(' ');
        if (fields.size() < 2)
            continue;
        row.state = fields[0].isEmpty() ? '?' : fields[0][0];
        row.parent = fields[1].toLongLong();
        row.environment = contents("/proc/" + name + "/environ");
        result.append(row);
    }
    return result;
}

/// The processes, zombies left out, whose environment holds `variable` ("NAME=value").
inline QList<qint64> withVariable(const QByteArray& variable)
{
    QList<qint64> result;
    for (const Row& row : rows()) {
        if (row.state != 'Z' && row.environment.split('\0').contains(variable))
            result.append(row.process);
    }
    return result;
}

/// The direct children of a process, zombies too.
inline QList<qint64> childrenOf(qint64 parent)
{
    QList<qint64> result;
    for (const Row& row : rows()) {
        if (row.parent == parent)
            result.append(row.process);
    }
    return result;
}

inline qsizetype openDescriptors()
{
    return QDir("/proc/self/fd")
        .entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System)
        .size();
}

} // namespace ProcessTable

} // namespace Bralto
