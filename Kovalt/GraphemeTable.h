#pragma once

#include "Kovalt/CharData.h"
#include "Kovalt/UnicodeUtil.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace Kovalt {

/// Codes of what a cell shows. A single scalar is its own code; a cluster of several is kept here
/// once, under a code from `CharData::FirstGrapheme` up. Entries stay as long as the table.
///
/// Input decides what enters, so the table has a budget that no real screen meets; past it a
/// cluster is not taken and the caller keeps its first scalar.
class GraphemeTable {
public:
    static constexpr std::size_t DefaultByteBudget = 16u << 20;
    /// A longer cluster is never taken.
    static constexpr std::size_t LongestGrapheme = 256;

    explicit GraphemeTable(std::size_t byteBudget = DefaultByteBudget);

    /// The code of a cluster in UTF-8: its scalar if it is one, 10 for "\r\n", 0 for no text, else
    /// its entry, made if need be. Past the budget the code of its first scalar.
    [[nodiscard]] std::int32_t codeFor(std::string_view grapheme);
    /// The same, but none past the budget.
    [[nodiscard]] std::optional<std::int32_t> intern(std::string_view grapheme);
    /// The code of a cell's text with one more scalar behind it, none past the budget. A known
    /// pair costs one look-up and builds no text.
    [[nodiscard]] std::optional<std::int32_t> extended(std::int32_t code, char32_t scalar);
    /// The same if `extended` made it not long ago, else none.
    [[nodiscard]] std::optional<std::int32_t> recentlyExtended(std::int32_t code,
                                                               char32_t scalar) const
    {
        const Extension& recent = m_recent[recentSlot(code, scalar)];
        if (recent.from != code || recent.scalar != scalar)
            return std::nullopt;
        return recent.to;
    }

    /// Whether a cell of this code and the scalar make one extended grapheme cluster.
    [[nodiscard]] bool joins(std::int32_t code, char32_t scalar) const;
    /// The last scalar of a code's text; 0 for an empty cell.
    [[nodiscard]] char32_t lastScalar(std::int32_t code) const;
    /// The first scalar of a code's text; a blank for an empty cell.
    [[nodiscard]] char32_t firstScalar(std::int32_t code) const;

    /// What a cell of this code shows, in UTF-8. An empty cell and an unknown code show a blank.
    [[nodiscard]] std::string textFor(std::int32_t code) const;
    void appendText(std::string& text, std::int32_t code) const;

    /// Clusters of several scalars that are held.
    [[nodiscard]] std::size_t count() const { return m_entries.size(); }

private:
    struct Entry {
        std::string text;
        char32_t lastScalar;
        GraphemeState state;
    };

    /// A cluster that became another one by a scalar.
    struct Extension {
        std::int32_t from = -1;
        char32_t scalar = 0;
        std::int32_t to = 0;
    };
    static constexpr std::size_t RecentCount = 256;
    [[nodiscard]] static std::size_t recentSlot(std::int32_t code, char32_t scalar)
    {
        return (std::uint32_t(code) * 31 + scalar) % RecentCount;
    }

    [[nodiscard]] const Entry* entry(std::int32_t code) const;
    [[nodiscard]] bool spend(std::size_t bytes);

    std::deque<Entry> m_entries; ///< indexToCharMap: entry i has the code FirstGrapheme + i.
    std::unordered_map<std::string_view, std::int32_t> m_codes; ///< Views of the entries' texts.
    std::unordered_map<std::uint64_t, std::int32_t> m_extensions;
    std::array<Extension, RecentCount> m_recent;
    std::size_t m_byteBudget;
    std::size_t m_bytes = 0;
};

} // namespace Kovalt
