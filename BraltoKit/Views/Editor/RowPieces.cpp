#include "Views/Editor/RowPieces.h"

#include "Views/Editor/TextRows.h"

#include <algorithm>

namespace Bralto {
namespace {

/// Letters that every code face has, each one column wide.
bool isSimple(QChar character)
{
    return character >= u' ' && character < char16_t(0x300);
}

/// Lets the last piece reach to `end`; its last letter becomes a piece of its own if need be.
void addMark(std::vector<RowPiece>& pieces, QStringView row, qsizetype end)
{
    RowPiece& last = pieces.back();
    if (!last.isSimple || last.text.size() == 1) {
        last.text = row.sliced(last.offset, end - last.offset);
        last.isSimple = false;
        return;
    }
    const qsizetype letter = last.offset + last.text.size() - 1;
    last.text.chop(1);
    --last.width;
    pieces.push_back(
        {row.sliced(letter, end - letter), last.column + last.width, 1, letter, true, false});
}

} // namespace

std::vector<RowPiece> rowPieces(QStringView row)
{
    std::vector<RowPiece> pieces;
    int column = 0;
    for (qsizetype at = 0; at < row.size();) {
        qsizetype end = at;
        while (end < row.size() && isSimple(row[end]))
            ++end;
        if (end > at) {
            const int width = int(end - at);
            pieces.push_back({row.sliced(at, end - at), column, width, at, true, true});
            column += width;
            at = end;
            continue;
        }
        const bool isPair = row[at].isHighSurrogate() && at + 1 < row.size();
        const char32_t character =
            isPair ? QChar::surrogateToUcs4(row[at], row[at + 1]) : char32_t(row[at].unicode());
        const qsizetype length = isPair ? 2 : 1;
        const int width = TextRows::widthOf(character, column);
        if (width == 0 && !pieces.empty() && pieces.back().isVisible) {
            // A mark is drawn with the letter that it stands on.
            addMark(pieces, row, at + length);
        } else {
            pieces.push_back(
                {row.sliced(at, length), column, width, at, character != U'\t', false});
        }
        column += width;
        at += length;
    }
    return pieces;
}

int columnAt(const std::vector<RowPiece>& pieces, qsizetype offset)
{
    int column = 0;
    for (const RowPiece& piece : pieces) {
        if (offset < piece.offset + piece.text.size())
            return piece.column +
                   std::min(piece.width, int(std::max<qsizetype>(0, offset - piece.offset)));
        column = piece.column + piece.width;
    }
    return column;
}

} // namespace Bralto
