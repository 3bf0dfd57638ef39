#include "Kovalt/UnicodeUtil.h"

#include "Kovalt/Utf8.h"

#include <algorithm>

namespace Kovalt {

namespace {

bool breaksAlways(GraphemeBreak kind)
{
    return kind == GraphemeBreak::Control || kind == GraphemeBreak::CR || kind == GraphemeBreak::LF;
}

/// Whether two parts of Hangul syllables belong to one.
bool isOneSyllable(GraphemeBreak last, GraphemeBreak next)
{
    using enum GraphemeBreak;
    switch (last) {
    case L:
        return next == L || next == V || next == LV || next == LVT;
    case LV:
    case V:
        return next == V || next == T;
    case LVT:
    case T:
        return next == T;
    default:
        return false;
    }
}

/// Scalars that add no column to the cluster that they stand in.
bool addsNoColumn(char32_t scalar)
{
    using enum GeneralCategory;
    const GeneralCategory category = UnicodeUtil::generalCategory(scalar);
    const bool isMark = category == Mn || category == Mc || category == Me;
    const bool isSeparator = category == Zl || category == Zp;
    return isMark || isSeparator || category == Cf || UnicodeUtil::isEmojiModifier(scalar) ||
           (scalar >= 0xD7B0 && scalar <= 0xD7FF);
}

} // namespace

bool GraphemeState::continues(GraphemeBreak next, bool pictographic) const
{
    using enum GraphemeBreak;
    if (m_last == CR && next == LF)
        return true;
    if (breaksAlways(m_last) || breaksAlways(next))
        return false;
    if (next == Extend || next == ZWJ || next == SpacingMark || m_last == Prepend)
        return true;
    if (pictographic && m_emoji == Emoji::Joined)
        return true;
    if (next == RegionalIndicator)
        return m_oddIndicators;
    return isOneSyllable(m_last, next);
}

bool GraphemeState::wouldContinue(char32_t scalar) const
{
    const ScalarProperties& of = UnicodeUtil::properties(scalar);
    return continues(of.graphemeBreak, of.extendedPictographic);
}

bool GraphemeState::advance(char32_t scalar)
{
    const ScalarProperties& of = UnicodeUtil::properties(scalar);
    const GraphemeBreak next = of.graphemeBreak;
    const bool goesOn = continues(next, of.extendedPictographic);
    if (of.extendedPictographic)
        m_emoji = Emoji::Base;
    else if (m_emoji == Emoji::Base && next == GraphemeBreak::ZWJ)
        m_emoji = Emoji::Joined;
    else if (m_emoji != Emoji::Base || next != GraphemeBreak::Extend)
        m_emoji = Emoji::No;
    m_oddIndicators = next == GraphemeBreak::RegionalIndicator && !m_oddIndicators;
    m_last = next;
    return goesOn;
}

std::string_view UnicodeUtil::version()
{
    return UnicodeTables::Version;
}

bool UnicodeUtil::joins(std::string_view previous, char32_t scalar)
{
    GraphemeState state;
    for (std::size_t position = 0; position < previous.size();)
        state.advance(Utf8::next(previous, position));
    return state.wouldContinue(scalar);
}

int UnicodeUtil::columnWidth(std::string_view grapheme)
{
    std::size_t position = 0;
    if (grapheme.empty())
        return 0;
    const char32_t first = Utf8::next(grapheme, position);
    if (position == grapheme.size())
        return computeColumnWidth(first);
    int width = 0;
    for (position = 0; position < grapheme.size();) {
        const char32_t scalar = Utf8::next(grapheme, position);
        if (!addsNoColumn(scalar))
            width = std::max(width, computeColumnWidth(scalar));
    }
    return width;
}

} // namespace Kovalt
