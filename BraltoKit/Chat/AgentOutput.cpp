#include "Chat/AgentOutput.h"

#include "Chat/ChatProtocol.h"

#include <iterator>
#include <utility>

namespace Bralto {

AgentOutput::AgentOutput(std::shared_ptr<MainThreadDoor> door, const Clock& clock, QString home)
    : m_door(std::move(door))
    , m_clock(clock)
    , m_home(std::move(home))
{
}

AgentPipes AgentOutput::pipes(const std::shared_ptr<AgentOutput>& output)
{
    AgentPipes pipes;
    pipes.output = [output](std::string_view bytes) { output->read(bytes); };
    pipes.outputEnded = [output] { output->end(); };
    pipes.errors = [output](std::string_view bytes) { output->m_errors.append(bytes); };
    pipes.ended = [output](int status) { output->exit(status); };
    return pipes;
}

AgentOutput::Batch AgentOutput::take()
{
    const std::lock_guard lock(m_mutex);
    m_reads = 0;
    m_isHopping = false;
    m_taken.notify_all();
    return std::exchange(m_batch, {});
}

void AgentOutput::mute()
{
    const std::lock_guard lock(m_mutex);
    m_isMuted = true;
    m_batch = {};
    m_taken.notify_all();
}

std::optional<int> AgentOutput::exitStatus() const
{
    const std::lock_guard lock(m_mutex);
    return m_exitStatus;
}

void AgentOutput::read(std::string_view bytes)
{
    const std::vector<QByteArray> lines = m_lines.feed(bytes);
    std::vector<ChatEvent> events;
    for (const QByteArray& line : lines)
        decode(line, events);
    append(std::move(events));
}

void AgentOutput::end()
{
    std::vector<ChatEvent> events;
    if (const auto line = m_lines.finish())
        decode(*line, events);
    append(std::move(events));
    const std::lock_guard lock(m_mutex);
    m_batch.hasEnded = !m_isMuted;
    hop();
}

void AgentOutput::exit(int status)
{
    const std::lock_guard lock(m_mutex);
    m_exitStatus = status;
    hop();
}

void AgentOutput::decode(const QByteArray& line, std::vector<ChatEvent>& events)
{
    const auto object = m_json.object(line);
    if (!object)
        return;
    m_hasSpoken = true;
    QDateTime now;
    m_door->whileOpen([this, &now](QObject*) { now = m_clock.now(); });
    auto decoded = ChatProtocol::events(*object, ChatProtocol::Source::Live, now, m_home);
    std::move(decoded.begin(), decoded.end(), std::back_inserter(events));
}

void AgentOutput::append(std::vector<ChatEvent> events)
{
    if (events.empty())
        return;
    std::unique_lock lock(m_mutex);
    m_taken.wait(lock, [this] { return m_isMuted || m_reads < PendingReads; });
    if (m_isMuted)
        return;
    ++m_reads;
    std::move(events.begin(), events.end(), std::back_inserter(m_batch.events));
    hop();
}

/// With the mutex held.
void AgentOutput::hop()
{
    if (std::exchange(m_isHopping, true))
        return;
    m_door->post(m_arrived);
}

} // namespace Bralto
