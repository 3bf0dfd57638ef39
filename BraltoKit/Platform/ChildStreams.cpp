#include "Platform/ChildStreams.h"

#include "Platform/ProcessGuardian.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/wait.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>
#include <thread>

namespace Bralto {

namespace {

using namespace std::chrono_literals;

using Kovalt::FileDescriptor;

using Clock = std::chrono::steady_clock;

constexpr qsizetype ReadSize = 64 * 1024; // What a pipe holds.

// The child's exit, the end of its output and the end of its errors arrive by three ways. Once one
// of the first two is there, the others follow at once; only a process that can't be killed and
// holds a pipe makes this wait for nothing.
constexpr auto EndsTogether = 1s;

void blockSignals()
{
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, nullptr);
}

} // namespace

ChildStreams::ChildStreams(Ends ends, pid_t guardian, AgentPipes pipes)
    : m_ends(std::move(ends))
    , m_guardian(guardian)
    , m_pipes(std::move(pipes))
    , m_buffer(ReadSize, Qt::Uninitialized)
{
}

Kovalt::FileDescriptor ChildStreams::makeWake()
{
    return FileDescriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
}

bool ChildStreams::start(const std::shared_ptr<ChildStreams>& streams)
{
    bool hasReader = false;
    try {
        std::thread([streams] { streams->runReader(); }).detach();
        hasReader = true;
        std::thread([streams] { streams->runWriter(); }).detach();
        return true;
    } catch (const std::system_error&) {
        streams->abandon();
        if (!hasReader)
            streams->collectGuardian();
        return false;
    }
}

void ChildStreams::write(QByteArray bytes)
{
    if (bytes.isEmpty())
        return;
    const std::lock_guard lock(m_mutex);
    if (m_inputClosing)
        return;
    m_queue.push_back(std::move(bytes));
    m_changed.notify_one();
}

void ChildStreams::closeInput()
{
    const std::lock_guard lock(m_mutex);
    m_inputClosing = true;
    m_changed.notify_one();
}

void ChildStreams::abandon()
{
    m_abandoned = true;
    shutdown(m_ends.control.get(), SHUT_WR);
    (void)!eventfd_write(m_ends.wake.get(), 1);
    closeInput();
}

// Reading

void ChildStreams::runReader()
{
    blockSignals();
    while (!m_abandoned && !(m_outputReported && m_exitReported)) {
        waitForInput();
        reportEnds();
    }
    m_pipes = {};
    collectGuardian();
}

/// Waits until something happens and takes it in.
void ChildStreams::waitForInput()
{
    std::array<pollfd, 4> sources{{{m_ends.wake.get(), POLLIN, 0},
                                   {m_guardianGone ? -1 : m_ends.control.get(), POLLIN, 0},
                                   {m_ends.output.get(), POLLIN, 0},
                                   {m_ends.errors.get(), POLLIN, 0}}};
    int timeout = -1;
    if (m_deadline) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(*m_deadline - Clock::now());
        timeout = int(std::max(left, 0ms).count());
    }
    if (poll(sources.data(), sources.size(), timeout) <= 0 || m_abandoned)
        return;
    if (sources[3].revents)
        readPipe(m_ends.errors, m_pipes.errors);
    if (sources[2].revents && !m_abandoned)
        readPipe(m_ends.output, m_pipes.output);
    if (sources[1].revents)
        readReport();
}

void ChildStreams::readPipe(FileDescriptor& pipe,
                            const std::function<void(std::string_view)>& deliver)
{
    const ssize_t length = ::read(pipe.get(), m_buffer.data(), std::size_t(m_buffer.size()));
    if (length > 0) {
        deliver(std::string_view(m_buffer.constData(), std::size_t(length)));
        m_deadline.reset(); // However long the receiver took, there may be more.
    } else if (length == 0 || (errno != EAGAIN && errno != EINTR)) {
        pipe.reset();
    }
}

void ChildStreams::readReport()
{
    ProcessGuardian::Report report;
    const ssize_t length = recv(m_ends.control.get(), &report, sizeof report, MSG_DONTWAIT);
    if (length < 0 && (errno == EAGAIN || errno == EINTR))
        return;
    if (length <= 0) {
        // A guardian that was killed takes the child along.
        m_guardianGone = true;
        if (!m_exitStatus)
            m_exitStatus = 128 + SIGKILL;
    } else if (report.kind == ProcessGuardian::Report::Kind::Exited) {
        m_exitStatus = report.value;
    }
    if (m_exitStatus)
        m_running = false;
}

void ChildStreams::reportEnds()
{
    const bool outputEnded = !m_ends.output.isOpen() && !m_outputReported;
    if (m_abandoned || !(outputEnded || m_exitStatus))
        return;
    if (!m_deadline)
        m_deadline = Clock::now() + EndsTogether;
    const bool complete = m_exitStatus && !m_ends.output.isOpen() && !m_ends.errors.isOpen();
    if (!complete && Clock::now() < *m_deadline)
        return;
    m_deadline.reset();
    if (m_exitStatus) {
        m_exitReported = true;
        m_pipes.ended(*m_exitStatus);
    }
    if (!m_outputReported && !m_abandoned) {
        m_outputReported = true;
        m_ends.output.reset();
        m_pipes.outputEnded();
    }
}

void ChildStreams::collectGuardian()
{
    closeInput();
    // Nobody listens any more: a child that still writes must not wait for that.
    m_ends.output.reset();
    m_ends.errors.reset();
    while (waitpid(m_guardian, nullptr, 0) < 0 && errno == EINTR) {
    }
    m_running = false;
}

// Writing

void ChildStreams::runWriter()
{
    blockSignals(); // SIGPIPE too: a write to a child that is gone fails instead.
    for (;;) {
        QByteArray bytes;
        {
            std::unique_lock lock(m_mutex);
            m_changed.wait(lock, [this] { return !m_queue.empty() || m_inputClosing; });
            if (m_queue.empty() || m_abandoned)
                break;
            bytes = std::move(m_queue.front());
            m_queue.pop_front();
        }
        if (!writeAll(bytes))
            break;
    }
    m_ends.input.reset();
    const std::lock_guard lock(m_mutex);
    m_inputClosing = true;
    m_queue.clear();
}

bool ChildStreams::writeAll(const QByteArray& bytes)
{
    qsizetype written = 0;
    while (written < bytes.size()) {
        const ssize_t length = ::write(m_ends.input.get(), bytes.constData() + written,
                                       std::size_t(bytes.size() - written));
        if (length >= 0) {
            written += length;
            continue;
        }
        if (errno != EAGAIN && errno != EINTR)
            return false;
        std::array<pollfd, 2> sources{
            {{m_ends.wake.get(), POLLIN, 0}, {m_ends.input.get(), POLLOUT, 0}}};
        if (poll(sources.data(), sources.size(), -1) > 0 && sources[0].revents)
            return false;
    }
    return true;
}

} // namespace Bralto
