#include "DemoAgent/Behaviours/ShellCommand.h"

#include <unistd.h>

#include <csignal>

namespace DemoAgent {

namespace {

constexpr qsizetype MostOutput = 65536;

volatile std::sig_atomic_t group = 0;

void keep(QByteArray& kept, const QByteArray& arrived)
{
    kept += arrived.left(MostOutput - kept.size());
}

} // namespace

ShellCommand::ShellCommand(const QString& command, const QString& folder,
                           std::chrono::milliseconds limit)
{
    m_process.setWorkingDirectory(folder);
    m_process.setChildProcessModifier([] { ::setpgid(0, 0); });
    m_process.setStandardInputFile(QProcess::nullDevice());
    QObject::connect(&m_process, &QProcess::readyReadStandardOutput, &m_process,
                     [this] { keep(m_output, m_process.readAllStandardOutput()); });
    QObject::connect(&m_process, &QProcess::readyReadStandardError, &m_process,
                     [this] { keep(m_errors, m_process.readAllStandardError()); });
    QObject::connect(&m_process, &QProcess::finished, &m_process, [this] { finish(false); });
    QObject::connect(&m_process, &QProcess::errorOccurred, &m_process, [this] {
        if (m_process.state() == QProcess::NotRunning)
            finish(false);
    });
    QObject::connect(&m_limit, &QTimer::timeout, &m_process, [this] {
        killGroup();
        finish(true);
    });
    m_limit.setSingleShot(true);
    m_limit.start(limit);
    m_process.start("/bin/sh", {"-c", command});
    group = static_cast<int>(m_process.processId());
}

ShellCommand::~ShellCommand()
{
    m_process.disconnect();
    killGroup();
    m_process.waitForFinished(1000);
    group = 0;
}

int ShellCommand::runningGroup()
{
    return group;
}

void ShellCommand::finish(bool timedOut)
{
    m_limit.stop();
    const bool ranToItsEnd = !timedOut && m_process.exitStatus() == QProcess::NormalExit &&
                             m_process.error() != QProcess::FailedToStart;
    m_outcome.bring({
        .output = QString::fromUtf8(m_output),
        .errors = QString::fromUtf8(m_errors),
        .exitCode = ranToItsEnd ? m_process.exitCode() : -1,
        .timedOut = timedOut,
    });
}

void ShellCommand::killGroup()
{
    if (m_process.state() != QProcess::NotRunning && m_process.processId() > 0)
        ::kill(-static_cast<pid_t>(m_process.processId()), SIGKILL);
}

} // namespace DemoAgent
