#include "DemoAgent/Behaviours/ShellCommand.h"

#include <sys/mman.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <new>

namespace DemoAgent {

namespace {

constexpr qsizetype MostOutput = 65536;

/// The group of the running command, 0 if none runs. Shared with the command's process, which
/// writes it before it becomes the shell: a signal that the command provokes at once finds it told.
std::atomic<pid_t>& group()
{
    static auto* const shared = [] {
        void* const page = ::mmap(nullptr, sizeof(std::atomic<pid_t>), PROT_READ | PROT_WRITE,
                                  MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        return page == MAP_FAILED ? new std::atomic<pid_t>(0) : new (page) std::atomic<pid_t>(0);
    }();
    return *shared;
}
static_assert(std::atomic<pid_t>::is_always_lock_free);

void keep(QByteArray& kept, const QByteArray& arrived)
{
    kept += arrived.left(MostOutput - kept.size());
}

} // namespace

ShellCommand::ShellCommand(const QString& command, const QString& folder,
                           std::chrono::milliseconds limit)
{
    m_process.setWorkingDirectory(folder);
    m_process.setChildProcessModifier([shared = &group()] {
        ::setpgid(0, 0);
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        *shared = ::getpid();
    });
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
    group() = static_cast<pid_t>(m_process.processId());
}

ShellCommand::~ShellCommand()
{
    m_process.disconnect();
    killGroup();
    m_process.waitForFinished(1000);
    group() = 0;
}

int ShellCommand::runningGroup()
{
    return group();
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
