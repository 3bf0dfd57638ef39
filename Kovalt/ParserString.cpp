#include "Kovalt/ParserString.h"

#include <exception>

namespace Kovalt {

namespace {

/// More than this is not kept for the next string.
constexpr std::size_t KeptCapacity = 64U << 10U;

} // namespace

void ParserString::append(std::span<const std::uint8_t> bytes, std::size_t limit) noexcept
{
    if (m_dropped)
        return;
    if (bytes.size() > limit || m_bytes.size() > limit - bytes.size()) {
        drop();
        return;
    }
    try {
        m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
    } catch (const std::exception&) {
        drop();
    }
}

void ParserString::commit() noexcept
{
    m_committedSize = m_bytes.size();
    m_committedDropped = m_dropped;
    m_keepsBefore = false;
    if (!m_before.empty())
        std::vector<std::uint8_t>().swap(m_before);
}

void ParserString::rollBack() noexcept
{
    if (m_keepsBefore)
        m_bytes.swap(m_before);
    if (m_bytes.size() > m_committedSize)
        m_bytes.erase(m_bytes.begin() + static_cast<std::ptrdiff_t>(m_committedSize),
                      m_bytes.end());
    m_dropped = m_committedDropped;
    commit();
}

void ParserString::clearContent() noexcept
{
    m_dropped = false;
    if (m_committedSize > 0 && !m_keepsBefore) {
        m_before.swap(m_bytes);
        m_keepsBefore = true;
    }
    m_bytes.clear();
    if (m_bytes.capacity() > KeptCapacity)
        std::vector<std::uint8_t>().swap(m_bytes);
}

void ParserString::drop() noexcept
{
    // What was dropped stays dropped: a way back would have to keep the bytes.
    if (!m_keepsBefore && m_committedSize > 0) {
        m_committedSize = 0;
        m_committedDropped = true;
    }
    std::vector<std::uint8_t>().swap(m_bytes);
    m_dropped = true;
}

} // namespace Kovalt
