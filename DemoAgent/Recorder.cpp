#include "DemoAgent/Recorder.h"

#include <QCoreApplication>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcessEnvironment>

namespace DemoAgent {

namespace {

QJsonObject environment()
{
    static const QStringList names{"HOME", "PATH", "TERM", "COLORTERM", "TERM_PROGRAM", "LANG"};
    const QProcessEnvironment all = QProcessEnvironment::systemEnvironment();
    QJsonObject result;
    for (const QString& name : all.keys()) {
        if (name.startsWith(u"BRALTO") || name.startsWith(u"CLAUDE") || names.contains(name))
            result.insert(name, all.value(name));
    }
    return result;
}

} // namespace

void Recorder::open(const QString& path)
{
    m_file.close();
    m_file.setFileName(path);
    if (m_file.open(QFile::WriteOnly | QFile::Append | QFile::Unbuffered) && m_hasStarted)
        started(m_words);
}

void Recorder::started(const QStringList& words)
{
    m_words = words;
    m_hasStarted = true;
    note({{"from", "start"},
          {"args", QJsonArray::fromStringList(words)},
          {"cwd", QDir::currentPath()},
          {"pid", QCoreApplication::applicationPid()},
          {"env", environment()}});
}

void Recorder::arrived(const QByteArray& line)
{
    const QJsonDocument document = QJsonDocument::fromJson(line);
    if (document.isObject())
        note({{"from", "app"}, {"line", document.object()}});
    else
        note({{"from", "app"}, {"text", QString::fromUtf8(line)}});
}

void Recorder::inputEnded()
{
    note({{"from", "eof"}});
}

void Recorder::note(QJsonObject entry)
{
    if (!m_file.isOpen())
        return;
    entry.insert("ms", m_clock.elapsed());
    m_file.write(QJsonDocument(entry).toJson(QJsonDocument::Compact) + '\n');
}

} // namespace DemoAgent
