#include "Chat/ChatErrorLog.h"

namespace Bralto {

void ChatErrorLog::append(std::string_view bytes)
{
    if (bytes.size() > std::size_t(KeptBytes))
        bytes.remove_prefix(bytes.size() - std::size_t(KeptBytes));

    const std::lock_guard lock(m_mutex);
    m_bytes.append(bytes.data(), qsizetype(bytes.size()));
    if (m_bytes.size() > KeptBytes)
        m_bytes.remove(0, m_bytes.size() - KeptBytes);
}

QString ChatErrorLog::tail() const
{
    const std::lock_guard lock(m_mutex);
    return QString::fromUtf8(m_bytes.last(std::min(m_bytes.size(), TailBytes)));
}

void ChatErrorLog::clear()
{
    const std::lock_guard lock(m_mutex);
    m_bytes.clear();
}

} // namespace Bralto
