#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace Kovalt {

/// The bytes of a string sequence while it arrives. A string that passes its limit, or that memory
/// can't be found for, is dropped: it holds nothing and takes nothing until it is cleared.
/// It can go back to what it held when the current call began, at no cost while nobody asks for it.
class ParserString {
public:
    [[nodiscard]] std::span<const std::uint8_t> bytes() const { return m_bytes; }
    [[nodiscard]] bool isEmpty() const { return m_bytes.empty(); }
    [[nodiscard]] bool isDropped() const { return m_dropped; }

    void append(std::span<const std::uint8_t> bytes, std::size_t limit) noexcept;
    void clear() noexcept
    {
        if (!m_bytes.empty() || m_dropped)
            clearContent();
    }

    /// A call begins or ends: `rollBack` from now on means this content.
    void commit() noexcept;
    void rollBack() noexcept;

private:
    void clearContent() noexcept;
    void drop() noexcept;

    std::vector<std::uint8_t> m_bytes;
    std::vector<std::uint8_t> m_before; ///< What was cleared since `commit`, if it was older.
    std::size_t m_committedSize = 0;
    bool m_dropped = false;
    bool m_committedDropped = false;
    bool m_keepsBefore = false;
};

} // namespace Kovalt
