#include "Kovalt/WordSegments.h"

#include "Kovalt/UnicodeUtil.h"

#include <optional>

namespace Kovalt {

namespace {

using enum WordBreak;

WordBreak kindOf(char32_t scalar)
{
    return UnicodeUtil::properties(scalar).wordBreak;
}

bool isLineEnd(WordBreak kind)
{
    return kind == CR || kind == LF || kind == Newline;
}
/// Belongs to what stands before it, so the rules look through it.
bool isAttached(WordBreak kind)
{
    return kind == Extend || kind == Format || kind == ZWJ;
}
bool isLetter(WordBreak kind)
{
    return kind == ALetter || kind == HebrewLetter;
}
bool isMidLetter(WordBreak kind)
{
    return kind == MidLetter || kind == MidNumLet || kind == SingleQuote;
}
bool isMidNumber(WordBreak kind)
{
    return kind == MidNum || kind == MidNumLet || kind == SingleQuote;
}

/// The scalar before `index` with what is attached to it passed over, and where it stands.
struct Found {
    WordBreak kind = WordBreak::Other;
    std::size_t index = 0;
};

std::optional<Found> before(std::u32string_view text, std::size_t index)
{
    while (index > 0) {
        const WordBreak kind = kindOf(text[--index]);
        if (!isAttached(kind) || index == 0 || isLineEnd(kindOf(text[index - 1])))
            return Found{kind, index};
    }
    return std::nullopt;
}

WordBreak after(std::u32string_view text, std::size_t index)
{
    for (++index; index < text.size(); ++index) {
        const WordBreak kind = kindOf(text[index]);
        if (!isAttached(kind))
            return kind;
    }
    return WordBreak::Other;
}

bool joinsAcrossMiddle(std::u32string_view text, std::size_t index, const Found& last,
                       WordBreak next)
{
    const std::optional<Found> previous = before(text, last.index);
    const WordBreak beforeMiddle = previous ? previous->kind : WordBreak::Other;
    const WordBreak behind = after(text, index);
    if (isLetter(last.kind) && isMidLetter(next) && isLetter(behind))
        return true;
    if (isLetter(beforeMiddle) && isMidLetter(last.kind) && isLetter(next))
        return true;
    if (last.kind == HebrewLetter && next == DoubleQuote && behind == HebrewLetter)
        return true;
    if (beforeMiddle == HebrewLetter && last.kind == DoubleQuote && next == HebrewLetter)
        return true;
    if (beforeMiddle == Numeric && isMidNumber(last.kind) && next == Numeric)
        return true;
    return last.kind == Numeric && isMidNumber(next) && behind == Numeric;
}

bool joinsDirectly(WordBreak last, WordBreak next)
{
    if ((isLetter(last) || last == Numeric) && (isLetter(next) || next == Numeric))
        return true;
    if (last == HebrewLetter && next == SingleQuote)
        return true;
    if (last == Katakana && next == Katakana)
        return true;
    const bool lastExtends =
        isLetter(last) || last == Numeric || last == Katakana || last == ExtendNumLet;
    if (lastExtends && next == ExtendNumLet)
        return true;
    return last == ExtendNumLet && (isLetter(next) || next == Numeric || next == Katakana);
}

/// Whether an odd number of regional indicators ends with this one.
bool endsHalfAFlag(std::u32string_view text, Found last)
{
    bool isOdd = true;
    for (auto found = before(text, last.index); found && found->kind == RegionalIndicator;
         found = before(text, found->index))
        isOdd = !isOdd;
    return isOdd;
}

} // namespace

bool WordSegments::isBoundary(std::u32string_view text, std::size_t index)
{
    if (index == 0 || index >= text.size())
        return true;
    const WordBreak direct = kindOf(text[index - 1]);
    const WordBreak next = kindOf(text[index]);
    if (direct == CR && next == LF)
        return false;
    if (isLineEnd(direct) || isLineEnd(next))
        return true;
    if (direct == ZWJ && UnicodeUtil::properties(text[index]).extendedPictographic)
        return false;
    if (direct == WSegSpace && next == WSegSpace)
        return false;
    if (isAttached(next))
        return false;
    const std::optional<Found> last = before(text, index);
    if (!last)
        return true;
    if (joinsDirectly(last->kind, next) || joinsAcrossMiddle(text, index, *last, next))
        return false;
    return last->kind != RegionalIndicator || next != RegionalIndicator ||
           !endsHalfAFlag(text, *last);
}

} // namespace Kovalt
