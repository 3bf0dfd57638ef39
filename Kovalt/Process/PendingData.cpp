#include "Kovalt/Process/PendingData.h"

#include <utility>

namespace Kovalt {

bool PendingData::enqueue(Chunk chunk)
{
    const std::lock_guard lock(m_lock);
    m_bytes += chunk.size();
    m_chunks.push_back(std::move(chunk));
    if (m_bytes >= HighWaterBytes)
        m_readSuspended = true;
    return !std::exchange(m_scheduled, true);
}

std::optional<PendingData::Taken> PendingData::take()
{
    const std::lock_guard lock(m_lock);
    if (m_index >= m_chunks.size()) {
        m_chunks.clear();
        m_index = 0;
        m_scheduled = false;
        return std::nullopt;
    }
    Taken taken{std::move(m_chunks[m_index]), false};
    ++m_index;
    if (m_index >= FlushThreshold) {
        m_chunks.erase(m_chunks.begin(), m_chunks.begin() + static_cast<std::ptrdiff_t>(m_index));
        m_index = 0;
    }
    m_bytes -= taken.chunk.size();
    if (m_readSuspended && m_bytes <= LowWaterBytes) {
        m_readSuspended = false;
        taken.resumesReading = true;
    }
    return taken;
}

std::size_t PendingData::size() const
{
    const std::lock_guard lock(m_lock);
    return m_bytes;
}

bool PendingData::isReadSuspended() const
{
    const std::lock_guard lock(m_lock);
    return m_readSuspended;
}

} // namespace Kovalt
