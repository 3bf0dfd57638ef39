#pragma once

#include "Kovalt/ParserState.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace Kovalt {

/// What each byte does in each state of the parser: one flat array of bytes, `action << 4 | next`.
/// Bytes of 0xA0 and above share the column of 0xA0.
class TransitionTable {
public:
    static constexpr std::size_t Size = 4095;

    struct Entry {
        ParserAction action = ParserAction::Ignore;
        ParserState next = ParserState::Ground;

        bool operator==(const Entry&) const = default;
    };

    constexpr void set(ParserState state, std::uint8_t code, ParserAction action, ParserState next)
    {
        m_entries[index(state, code)] = static_cast<std::uint8_t>(
            static_cast<unsigned>(action) << 4U | static_cast<unsigned>(next));
    }
    [[nodiscard]] constexpr Entry entry(ParserState state, std::uint8_t code) const
    {
        const auto value = m_entries[index(state, code > 0x9F ? std::uint8_t{0xA0} : code)];
        return {static_cast<ParserAction>(value >> 4U), static_cast<ParserState>(value & 0x0FU)};
    }
    [[nodiscard]] constexpr const std::array<std::uint8_t, Size>& bytes() const
    {
        return m_entries;
    }

private:
    static constexpr std::size_t index(ParserState state, std::uint8_t code)
    {
        return static_cast<std::size_t>(state) << 8U | code;
    }

    std::array<std::uint8_t, Size> m_entries{};
};

/// The states and bytes of a VT500, with application strings as a kind of their own.
[[nodiscard]] TransitionTable buildVt500TransitionTable();

/// Built once, shared by all parsers, never written again.
[[nodiscard]] const TransitionTable& sharedVt500Table();

} // namespace Kovalt
