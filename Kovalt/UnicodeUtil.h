#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Kovalt {

/// The general category, in the order of the standard's table.
enum class GeneralCategory : std::uint8_t {
    Lu,
    Ll,
    Lt,
    Lm,
    Lo,
    Mn,
    Mc,
    Me,
    Nd,
    Nl,
    No,
    Pc,
    Pd,
    Ps,
    Pe,
    Pi,
    Pf,
    Po,
    Sm,
    Sc,
    Sk,
    So,
    Zs,
    Zl,
    Zp,
    Cc,
    Cf,
    Cs,
    Co,
    Cn
};

enum class GraphemeBreak : std::uint8_t {
    Other,
    CR,
    LF,
    Control,
    Extend,
    ZWJ,
    RegionalIndicator,
    Prepend,
    SpacingMark,
    L,
    V,
    T,
    LV,
    LVT
};

enum class WordBreak : std::uint8_t {
    Other,
    CR,
    LF,
    Newline,
    Extend,
    ZWJ,
    RegionalIndicator,
    Format,
    Katakana,
    HebrewLetter,
    ALetter,
    SingleQuote,
    DoubleQuote,
    MidNumLet,
    MidLetter,
    MidNum,
    Numeric,
    ExtendNumLet,
    WSegSpace
};

/// What the Unicode data says of one scalar. Above U+10FFFF everything reads as unassigned.
struct ScalarProperties {
    std::int8_t width; ///< Columns: -1 control, 0 combining, 1 or 2.
    GeneralCategory category;
    GraphemeBreak graphemeBreak;
    WordBreak wordBreak;
    bool extendedPictographic;
    bool emojiVariationBase; ///< Has a text and an emoji presentation (U+FE0E, U+FE0F).
};

/// How far into an extended grapheme cluster a text is: all that the next scalar must know to
/// continue it or to begin another. Two bytes of plain data.
class GraphemeState {
public:
    /// Takes the scalar; true if it continues the cluster, false if it begins one.
    bool advance(char32_t scalar);
    /// Whether the scalar would continue the cluster.
    [[nodiscard]] bool wouldContinue(char32_t scalar) const;

    bool operator==(const GraphemeState&) const = default;

private:
    [[nodiscard]] bool continues(GraphemeBreak next, bool pictographic) const;

    enum class Emoji : std::uint8_t { No, Base, Joined };
    GraphemeBreak m_last = GraphemeBreak::Control; ///< So that nothing continues an empty text.
    Emoji m_emoji = Emoji::No;
    bool m_oddIndicators = false;
};

/// Made by the build, see Tools/UnicodeTables.
namespace UnicodeTables {
extern const char Version[];
extern const ScalarProperties Records[];
extern const std::uint16_t Blocks[];
extern const std::uint8_t Entries[];
} // namespace UnicodeTables

/// Properties of scalars, from tables that the build makes of the system's Unicode data: one
/// look-up each, the same for all threads.
namespace UnicodeUtil {

/// The version of the Unicode data, for example "15.0.0".
[[nodiscard]] std::string_view version();

[[nodiscard]] inline const ScalarProperties& properties(char32_t scalar)
{
    if (scalar > 0x10FFFF)
        scalar = 0x10FFFF;
    const std::size_t block = UnicodeTables::Blocks[scalar >> 8];
    return UnicodeTables::Records[UnicodeTables::Entries[block << 8 | (scalar & 0xFF)]];
}

/// Columns of a scalar: -1 for a control, 0 for what combines with the one before, 1, or 2.
/// A regional indicator has 2, and so has an emoji modifier that stands alone.
[[nodiscard]] inline int computeColumnWidth(char32_t scalar)
{
    return properties(scalar).width;
}

/// Whether U+FE0E and U+FE0F change how the scalar is presented.
[[nodiscard]] inline bool isEmojiPresentationBase(char32_t scalar)
{
    return properties(scalar).emojiVariationBase;
}
/// A skin tone, U+1F3FB to U+1F3FF; behind its base it has no column of its own.
[[nodiscard]] constexpr bool isEmojiModifier(char32_t scalar)
{
    return scalar >= 0x1F3FB && scalar <= 0x1F3FF;
}
[[nodiscard]] constexpr bool isRegionalIndicator(char32_t scalar)
{
    return scalar >= 0x1F1E6 && scalar <= 0x1F1FF;
}
[[nodiscard]] constexpr bool isVariationSelector(char32_t scalar)
{
    return scalar >= 0xFE00 && scalar <= 0xFE0F;
}
[[nodiscard]] inline GeneralCategory generalCategory(char32_t scalar)
{
    return properties(scalar).category;
}

/// Whether the UTF-8 text, which is one extended grapheme cluster, stays one with this scalar
/// behind it. For a cell's text `GraphemeTable::joins` is faster.
[[nodiscard]] bool joins(std::string_view previous, char32_t scalar);
/// Columns of a text that makes one cell: the widest of its scalars, marks and joiners aside.
[[nodiscard]] int columnWidth(std::string_view grapheme);

} // namespace UnicodeUtil

} // namespace Kovalt
