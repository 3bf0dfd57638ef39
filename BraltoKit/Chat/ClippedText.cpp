#include "Chat/ClippedText.h"

namespace Bralto {

namespace {

constexpr qsizetype MostOpen = 200000;
constexpr qsizetype MostClosed = 4000;

/// At most `count` UTF-16 units, never half of a pair.
QString firstCharacters(const QString& text, qsizetype count)
{
    if (text.size() <= count)
        return text;
    return text.first(text[count - 1].isHighSurrogate() ? count - 1 : count);
}

/// Where the line with this number ends.
qsizetype endOfLine(const QString& text, qsizetype number)
{
    qsizetype end = -1;
    for (qsizetype line = 0; line < number; ++line) {
        end = text.indexOf(u'\n', end + 1);
        if (end < 0)
            return text.size();
    }
    return end;
}

} // namespace

ClippedText ClippedText::of(const QString& text, qsizetype limit, bool showsAll)
{
    const qsizetype lines = text.count(u'\n') + 1;
    if (limit >= lines && text.size() <= MostClosed)
        return {text, {}};
    if (showsAll)
        return {firstCharacters(text, MostOpen), QStringLiteral("Show less")};
    return {firstCharacters(text.first(endOfLine(text, limit)), MostClosed),
            QStringLiteral("Show more (%1 lines)").arg(lines)};
}

} // namespace Bralto
