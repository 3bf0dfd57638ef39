#pragma once

#include "DemoAgent/Later.h"

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QTimer>

#include <chrono>

namespace DemoAgent {

/// A command under `/bin/sh -c`, in a process group of its own. Ending its life ends the group.
class ShellCommand {
public:
    struct Outcome {
        QString output;
        QString errors;
        int exitCode = 0;
        bool timedOut = false;
    };

    ShellCommand(const QString& command, const QString& folder,
                 std::chrono::milliseconds limit = std::chrono::seconds(10));
    ~ShellCommand();

    /// Brings the outcome when the command has ended, at the latest after the limit. Of each
    /// stream at most the first 64 KiB are kept.
    [[nodiscard]] Later<Outcome>& outcome() { return m_outcome; }

    /// The group that runs just now, 0 for none. For a signal handler, which must end it too.
    [[nodiscard]] static int runningGroup();

private:
    void finish(bool timedOut);
    void killGroup();

    QProcess m_process;
    QTimer m_limit;
    QByteArray m_output;
    QByteArray m_errors;
    Later<Outcome> m_outcome;
};

} // namespace DemoAgent
