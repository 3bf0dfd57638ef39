#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonObject>
#include <QStringList>

namespace DemoAgent {

/// Writes down what the app did, for tests: JSON lines with `from` ("start", "app", "eof",
/// "spawn") and `ms` since the start. Appends, so several processes may share a file. Until it is
/// opened it drops everything.
class Recorder {
public:
    Recorder() { m_clock.start(); }

    void open(const QString& path);

    /// The command line, the folder, and the variables that concern the agent.
    void started(const QStringList& words);
    /// A line of stdin: `line` if it is a JSON object, else `text`.
    void arrived(const QByteArray& line);
    void inputEnded();
    void note(QJsonObject entry);

private:
    QFile m_file;
    QElapsedTimer m_clock;
    /// Kept for a recorder that is opened by a script, after the start.
    QStringList m_words;
    bool m_hasStarted = false;
};

} // namespace DemoAgent
