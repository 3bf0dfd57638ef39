#pragma once

#include <cstdint>

namespace Kovalt {

/// A set of named bits. `Set` is the type that derives from this one and names them.
template <typename Set>
class OptionBits {
public:
    constexpr OptionBits() = default;

    [[nodiscard]] static constexpr Set of(unsigned bits)
    {
        Set set;
        set.m_bits = static_cast<std::uint8_t>(bits);
        return set;
    }
    [[nodiscard]] constexpr unsigned bits() const { return m_bits; }
    [[nodiscard]] constexpr bool isEmpty() const { return m_bits == 0; }
    /// At least one bit of `other` is set.
    [[nodiscard]] constexpr bool hasAny(Set other) const { return (m_bits & other.m_bits) != 0; }
    [[nodiscard]] constexpr bool hasAll(Set other) const
    {
        return (m_bits & other.m_bits) == other.m_bits;
    }
    [[nodiscard]] constexpr Set without(Set other) const
    {
        return of(m_bits & ~static_cast<unsigned>(other.m_bits));
    }

    friend constexpr Set operator|(Set left, Set right) { return of(left.bits() | right.bits()); }
    friend constexpr bool operator==(Set left, Set right) { return left.bits() == right.bits(); }

private:
    std::uint8_t m_bits = 0;
};

} // namespace Kovalt
