#include "Kovalt/Process/LocalProcess.h"

#include "Kovalt/Process/ProcessEnvironment.h"

#include <csignal>
#include <utility>

namespace Kovalt {

LocalProcess::LocalProcess(LocalProcessDelegate& delegate, RunLoop& loop, Delivery delivery,
                           ProcessLog::Printer printer)
    : m_delegate(delegate)
    , m_loop(loop)
    , m_delivery(delivery)
    , m_log(std::make_shared<ProcessLog>(std::move(printer)))
{
}

LocalProcess::~LocalProcess()
{
    if (m_connection)
        m_connection->disown();
}

void LocalProcess::startProcess(const ProcessStart& start)
{
    if (m_running)
        return;
    if (const auto former = std::exchange(m_connection, nullptr)) {
        former->close();
        former->deliverPending();
        former->disown();
    }
    std::vector<std::string> arguments = {start.execName.value_or(start.executable)};
    arguments.insert(arguments.end(), start.arguments.begin(), start.arguments.end());
    auto child = PseudoTerminalHelpers::fork(start.executable, arguments,
                                             start.environment ? *start.environment
                                                               : getEnvironmentVariables(),
                                             start.currentDirectory, m_delegate.getWindowSize());
    if (!child)
        return;
    const auto pid = child->pid;
    m_connection = ProcessConnection::start(std::move(*child), m_delivery, m_loop, *this, m_log);
    if (!m_connection)
        return;
    m_running = true;
    m_shellPid = pid;
}

void LocalProcess::send(std::span<const std::uint8_t> data)
{
    if (m_running)
        m_connection->send(data);
}

bool LocalProcess::isSendWaiting() const
{
    return m_running && m_connection->isSendWaiting();
}

void LocalProcess::terminate()
{
    if (m_connection) {
        m_connection->signal(SIGTERM);
        m_connection->close();
    }
    m_running = false;
}

void LocalProcess::updateWindowSize()
{
    if (m_running)
        PseudoTerminalHelpers::setWinSize(childfd(), m_delegate.getWindowSize());
}

int LocalProcess::childfd() const
{
    return m_connection ? m_connection->descriptor() : -1;
}

std::size_t LocalProcess::pendingBytes() const
{
    return m_connection ? m_connection->pending().size() : 0;
}

bool LocalProcess::isReadSuspended() const
{
    return m_connection && m_connection->pending().isReadSuspended();
}

void LocalProcess::setHostLogging(std::optional<std::string> directory)
{
    m_log->setDirectory(std::move(directory));
}

void LocalProcess::connectionReceived(std::span<const std::uint8_t> bytes)
{
    m_delegate.dataReceived(bytes);
}

void LocalProcess::connectionSent()
{
    m_delegate.sendCompleted(*this);
}

void LocalProcess::connectionEnded()
{
    m_running = false;
}

void LocalProcess::connectionExited(std::optional<int> status)
{
    // Before the report, so that the delegate may start the next program.
    m_running = false;
    m_delegate.processTerminated(*this, status);
}

} // namespace Kovalt
