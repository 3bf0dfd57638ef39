// The loop's side of a connection.

#include "Kovalt/Process/ProcessConnection.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <chrono>
#include <csignal>
#include <system_error>
#include <thread>
#include <utility>

namespace Kovalt {

namespace {

/// How long the loop is held before others get their turn.
constexpr std::chrono::milliseconds TimeSlice{4};

FileDescriptor openChildWatch(pid_t pid)
{
    // Closed on exec by itself.
    return FileDescriptor(static_cast<int>(::syscall(SYS_pidfd_open, pid, 0)));
}

} // namespace

std::shared_ptr<ProcessConnection>
ProcessConnection::start(PseudoTerminalHelpers::ForkedChild child, Delivery delivery, RunLoop& loop,
                         Owner& owner, std::shared_ptr<ProcessLog> log)
{
    std::shared_ptr<ProcessConnection> connection(
        new ProcessConnection(std::move(child), delivery, loop, owner, std::move(log)));
    try {
        if (!connection->m_childWatch.isOpen())
            std::thread([connection] { connection->watchExitFromThread(); }).detach();
        // The thread outlives its owner if the child does, and ends with the child.
        std::thread([connection] { connection->serve(); }).detach();
    } catch (const std::system_error&) {
        ::kill(connection->m_pid, SIGKILL);
        ::waitpid(connection->m_pid, nullptr, 0);
        connection->m_reaped = true;
        return nullptr;
    }
    return connection;
}

ProcessConnection::ProcessConnection(PseudoTerminalHelpers::ForkedChild child, Delivery delivery,
                                     RunLoop& loop, Owner& owner, std::shared_ptr<ProcessLog> log)
    : m_pid(child.pid)
    , m_delivery(delivery)
    , m_log(std::move(log))
    , m_outgoing(*m_log)
    , m_master(std::move(child.master))
    , m_childWatch(openChildWatch(m_pid))
    , m_loop(&loop)
    , m_owner(&owner)
    , m_descriptor(m_master.get())
{
    ::fcntl(m_descriptor, F_SETFL, ::fcntl(m_descriptor, F_GETFL) | O_NONBLOCK);
}

ProcessConnection::~ProcessConnection()
{
    // The loop went without running the task that would have done this.
    if (!m_reaped)
        reap();
}

void ProcessConnection::send(std::span<const std::uint8_t> bytes)
{
    if (m_descriptor >= 0 && !bytes.empty() && m_outgoing.send(m_descriptor, bytes))
        m_wake.wake();
}

void ProcessConnection::signal(int number) const
{
    // Until it is waited for, nobody else can have its number.
    if (!m_closed && !m_reaped)
        ::kill(m_pid, number);
}

void ProcessConnection::close()
{
    {
        const std::lock_guard lock(m_loopLock);
        m_closed = true;
        m_loop = nullptr;
    }
    {
        const std::lock_guard lock(m_gateLock);
        m_gate.notify_all();
    }
    m_descriptor = -1;
    m_wake.wake();
}

void ProcessConnection::disown()
{
    m_owner = nullptr;
    close();
}

void ProcessConnection::deliverPending()
{
    while (auto taken = m_pending.take())
        deliver(taken->chunk);
}

/// Hands over what was read until the slice of time is used up. The rest has its turn behind
/// whatever else the loop has to do.
void ProcessConnection::drain()
{
    const auto start = std::chrono::steady_clock::now();
    while (auto taken = m_pending.take()) {
        if (taken->resumesReading)
            m_wake.wake();
        deliver(taken->chunk);
        if (std::chrono::steady_clock::now() - start < TimeSlice)
            continue;
        if (m_owner == nullptr || post([self = shared_from_this()] { self->drain(); }))
            return;
        // Closed in between: nobody else would deliver what is left.
        deliverPending();
        return;
    }
}

void ProcessConnection::deliver(std::span<const std::uint8_t> bytes)
{
    m_delivered += bytes.size();
    if (m_owner != nullptr)
        m_owner->connectionReceived(bytes);
    reportExitIfDelivered();
}

void ProcessConnection::reportExitIfDelivered()
{
    if (!m_exitPosition || m_delivered < *m_exitPosition)
        return;
    m_exitPosition.reset();
    const auto status = reap();
    if (m_endTold && !m_closed)
        m_master.reset();
    if (m_owner != nullptr && !m_closed)
        m_owner->connectionExited(status);
}

/// Any thread, but only once the child is known to have ended.
std::optional<int> ProcessConnection::reap()
{
    if (m_reaped.exchange(true))
        return std::nullopt;
    int status = 0;
    return ::waitpid(m_pid, &status, WNOHANG) == m_pid ? std::optional(status) : std::nullopt;
}

/// False if the connection was closed: the loop may be gone.
bool ProcessConnection::post(RunLoop::Task task)
{
    const std::lock_guard lock(m_loopLock);
    if (m_loop == nullptr)
        return false;
    m_loop->post(std::move(task));
    return true;
}

} // namespace Kovalt
