#include "Chat/ChatLineReader.h"

#include <utility>

namespace Bralto {

std::vector<QByteArray> ChatLineReader::feed(std::string_view bytes)
{
    const std::lock_guard lock(m_mutex);
    std::vector<QByteArray> lines;
    for (auto end = bytes.find('\n'); end != std::string_view::npos; end = bytes.find('\n')) {
        m_rest.append(bytes.data(), qsizetype(end));
        if (!m_rest.isEmpty())
            lines.push_back(std::exchange(m_rest, {}));
        bytes.remove_prefix(end + 1);
    }
    m_rest.append(bytes.data(), qsizetype(bytes.size()));
    return lines;
}

std::optional<QByteArray> ChatLineReader::finish()
{
    const std::lock_guard lock(m_mutex);
    if (m_rest.isEmpty())
        return std::nullopt;
    return std::exchange(m_rest, {});
}

} // namespace Bralto
