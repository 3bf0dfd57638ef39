#include "Kovalt/Process/OutgoingData.h"

#include "Kovalt/Process/ProcessLog.h"

#include <unistd.h>

#include <cerrno>

namespace Kovalt {

OutgoingData::OutgoingData(ProcessLog& log)
    : m_log(log)
{
}

bool OutgoingData::send(int descriptor, std::span<const std::uint8_t> bytes)
{
    const auto number = m_log.queued(bytes);
    const std::lock_guard lock(m_lock);
    if (bytes.size() > MaximumWaiting - m_waiting) {
        m_log.writeFailed(ENOBUFS);
        return !m_messages.empty();
    }
    m_waiting += bytes.size();
    m_messages.push_back({number, 0, {bytes.begin(), bytes.end()}});
    return m_messages.size() > 1 || writeAll(descriptor);
}

bool OutgoingData::flush(int descriptor)
{
    const std::lock_guard lock(m_lock);
    return writeAll(descriptor);
}

bool OutgoingData::isWaiting() const
{
    const std::lock_guard lock(m_lock);
    return !m_messages.empty();
}

bool OutgoingData::writeAll(int descriptor)
{
    while (!m_messages.empty()) {
        if (!writeFirst(descriptor))
            return true;
        m_waiting -= m_messages.front().bytes.size();
        m_messages.pop_front();
    }
    return false;
}

/// True when nothing of the first message waits any longer: it is written, or it never will be.
bool OutgoingData::writeFirst(int descriptor)
{
    auto& message = m_messages.front();
    while (message.written < message.bytes.size()) {
        const auto count = ::write(descriptor, message.bytes.data() + message.written,
                                   message.bytes.size() - message.written);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0 && errno == EAGAIN)
            return false;
        if (count < 0) {
            m_log.writeFailed(errno);
            return true;
        }
        message.written += static_cast<std::size_t>(count);
    }
    m_log.completed(message.number, message.bytes.size());
    return true;
}

} // namespace Kovalt
