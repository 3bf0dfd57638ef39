// The side of a connection that runs on its own thread.

#include "Kovalt/Process/ProcessConnection.h"

#include <poll.h>
#include <sys/wait.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <utility>

namespace Kovalt {

namespace {

/// One piece of output.
constexpr std::size_t ReadSize = 131072;
/// More than a terminal of the kernel holds: what a child wrote before its end lies within it.
constexpr std::uint64_t MaximumAfterExit = 1048576;

/// The host's signals are for the host's threads.
void blockSignals()
{
    sigset_t all;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_BLOCK, &all, nullptr);
}

} // namespace

void ProcessConnection::serve()
{
    blockSignals();
    m_readBuffer.resize(ReadSize);
    while (!m_closed || !m_exitSeen) {
        const auto events = wait();
        if (m_closed) {
            m_ended = true;
            m_master.reset();
        }
        if (events.childExited && !std::exchange(m_exitSeen, true))
            m_receivedAtExit = m_received;

        constexpr int HangUp = POLLHUP | POLLERR;
        if (!m_ended && (events.master & (POLLOUT | HangUp)) != 0)
            writeWaiting();
        const auto isReadable = events.lookedForInput && (events.master & (POLLIN | HangUp)) != 0;
        if (!m_ended && isReadable)
            readAvailable();

        const auto allIsRead = m_ended || (events.lookedForInput && !isReadable) ||
                               m_received - m_receivedAtExit >= MaximumAfterExit;
        if (m_exitSeen && !m_exitReported && allIsRead)
            reportExitWhenRead();
        if (m_ended && m_exitReported)
            return;
    }
    reap();
}

/// Waits until there is something to do.
ProcessConnection::Events ProcessConnection::wait()
{
    Events result;
    result.lookedForInput = !m_ended && !m_pending.isReadSuspended();
    const auto events = static_cast<short>((result.lookedForInput ? POLLIN : 0) |
                                           (m_outgoing.isWaiting() ? POLLOUT : 0));
    // A descriptor without events would still report a hang-up, again and again.
    const auto master = m_ended || events == 0 ? -1 : m_master.get();
    const auto child = m_exitSeen ? -1 : m_childWatch.get();
    std::array<pollfd, 3> descriptors = {pollfd{m_wake.descriptor(), POLLIN, 0},
                                         pollfd{child, POLLIN, 0}, pollfd{master, events, 0}};
    // After the child's end only what lies ready is read before the end is told.
    const auto onlyLooks = m_exitSeen && !m_exitReported && (m_ended || result.lookedForInput);
    if (::poll(descriptors.data(), descriptors.size(), onlyLooks ? 0 : -1) < 0) {
        result.lookedForInput = false;
        return result;
    }
    if (descriptors[0].revents != 0)
        m_wake.take();
    result.childExited = descriptors[1].revents != 0 || m_exitSeenByThread;
    result.master = descriptors[2].revents;
    return result;
}

/// Everything that can be read without waiting, one piece at most.
void ProcessConnection::readAvailable()
{
    std::size_t size = 0;
    while (size < m_readBuffer.size()) {
        const auto count =
            ::read(m_master.get(), m_readBuffer.data() + size, m_readBuffer.size() - size);
        if (count < 0 && errno == EINTR)
            continue;
        // A terminal that nobody has open any longer fails with EIO: that is its end of file.
        m_ended = count == 0 || (count < 0 && errno != EAGAIN);
        if (count <= 0)
            break;
        size += static_cast<std::size_t>(count);
    }
    const auto end = m_readBuffer.begin() + static_cast<std::ptrdiff_t>(size);
    if (size > 0) {
        PendingData::Chunk chunk(m_readBuffer.begin(), end);
        m_log->received(chunk);
        receive(std::move(chunk));
    }
    if (m_ended) {
        m_log->received({});
        reportEnd();
    }
}

void ProcessConnection::receive(PendingData::Chunk chunk)
{
    m_received += chunk.size();
    if (m_delivery == Delivery::Synchronous)
        receiveSynchronously(std::move(chunk));
    else if (m_pending.enqueue(std::move(chunk)))
        post([self = shared_from_this()] { self->drain(); });
}

void ProcessConnection::receiveSynchronously(PendingData::Chunk chunk)
{
    m_taken = false;
    const auto posted = post([self = shared_from_this(), chunk = std::move(chunk)] {
        self->deliver(chunk);
        const std::lock_guard lock(self->m_gateLock);
        self->m_taken = true;
        self->m_gate.notify_all();
    });
    if (!posted)
        return;
    std::unique_lock lock(m_gateLock);
    m_gate.wait(lock, [this] { return m_taken || m_closed; });
}

void ProcessConnection::writeWaiting()
{
    if (!m_outgoing.isWaiting() || m_outgoing.flush(m_master.get()))
        return;
    post([self = shared_from_this()] {
        if (self->m_owner != nullptr && !self->m_closed)
            self->m_owner->connectionSent();
    });
}

void ProcessConnection::reportEnd()
{
    post([self = shared_from_this()] {
        // The terminal stays open: closing it would hang up a child that merely closed its side.
        self->m_endTold = true;
        self->m_descriptor = -1;
        if (self->m_owner != nullptr && !self->m_closed)
            self->m_owner->connectionEnded();
    });
}

/// Without a descriptor that tells of a child's end, a thread waits for it.
void ProcessConnection::watchExitFromThread()
{
    blockSignals();
    siginfo_t info{};
    while (::waitid(P_PID, static_cast<id_t>(m_pid), &info, WEXITED | WNOWAIT) != 0 &&
           errno == EINTR) {
    }
    m_exitSeenByThread = true;
    m_wake.wake();
}

/// The child has ended and what it wrote is read; it is told when all of that is delivered.
void ProcessConnection::reportExitWhenRead()
{
    m_exitReported = true;
    const auto posted = post([self = shared_from_this(), position = m_received] {
        self->m_exitPosition = position;
        self->reportExitIfDelivered();
    });
    if (!posted)
        reap();
}

} // namespace Kovalt
