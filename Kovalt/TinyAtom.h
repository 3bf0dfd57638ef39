#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>

namespace Kovalt {

/// Texts behind 16-bit codes, so that a cell can carry a hyperlink in two bytes. A code is handed
/// out once and never again, even after its release. Any thread may call.
class TinyAtomTable {
public:
    /// The last code; 0 means none and 0xFFFF is never given.
    static constexpr std::uint16_t LastCode = 65534;
    /// Bytes of text that one table holds unless told otherwise.
    static constexpr std::size_t DefaultByteBudget = 64u << 20;

    explicit TinyAtomTable(std::size_t byteBudget = DefaultByteBudget);

    /// A new code for the text; none when the codes are used up or the text doesn't fit in the
    /// budget. Equal texts get codes of their own, since their holders release them apart.
    [[nodiscard]] std::optional<std::uint16_t> lookup(std::string_view value);
    /// The text of a code; none for 0 and for what was released.
    [[nodiscard]] std::optional<std::string> target(std::uint16_t code) const;
    /// Forgets the texts of these codes; unknown ones are passed over.
    void release(std::span<const std::uint16_t> codes);
    /// Texts that are held now.
    [[nodiscard]] std::size_t count() const;

private:
    mutable std::mutex m_lock;
    std::unordered_map<std::uint16_t, std::string> m_values;
    std::size_t m_byteBudget;
    std::size_t m_bytes = 0;
    std::uint32_t m_nextCode = 1;
};

/// The table of the whole process, which all terminals share.
namespace TinyAtom {
[[nodiscard]] TinyAtomTable& table();
[[nodiscard]] std::optional<std::uint16_t> lookup(std::string_view value);
[[nodiscard]] std::optional<std::string> target(std::uint16_t code);
void release(std::span<const std::uint16_t> codes);
} // namespace TinyAtom

} // namespace Kovalt
