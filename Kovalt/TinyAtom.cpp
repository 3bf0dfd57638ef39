#include "Kovalt/TinyAtom.h"

namespace Kovalt {

TinyAtomTable::TinyAtomTable(std::size_t byteBudget)
    : m_byteBudget(byteBudget)
{
}

std::optional<std::uint16_t> TinyAtomTable::lookup(std::string_view value)
{
    const std::lock_guard guard(m_lock);
    if (m_nextCode > LastCode || value.size() > m_byteBudget - m_bytes)
        return std::nullopt;
    const auto code = std::uint16_t(m_nextCode++);
    m_values.emplace(code, value);
    m_bytes += value.size();
    return code;
}

std::optional<std::string> TinyAtomTable::target(std::uint16_t code) const
{
    const std::lock_guard guard(m_lock);
    const auto found = m_values.find(code);
    if (found == m_values.end())
        return std::nullopt;
    return found->second;
}

void TinyAtomTable::release(std::span<const std::uint16_t> codes)
{
    const std::lock_guard guard(m_lock);
    for (const std::uint16_t code : codes) {
        const auto found = m_values.find(code);
        if (found == m_values.end())
            continue;
        m_bytes -= found->second.size();
        m_values.erase(found);
    }
}

std::size_t TinyAtomTable::count() const
{
    const std::lock_guard guard(m_lock);
    return m_values.size();
}

TinyAtomTable& TinyAtom::table()
{
    static TinyAtomTable shared;
    return shared;
}

std::optional<std::uint16_t> TinyAtom::lookup(std::string_view value)
{
    return table().lookup(value);
}

std::optional<std::string> TinyAtom::target(std::uint16_t code)
{
    return table().target(code);
}

void TinyAtom::release(std::span<const std::uint16_t> codes)
{
    table().release(codes);
}

} // namespace Kovalt
