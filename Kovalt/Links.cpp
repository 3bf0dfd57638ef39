#include "Kovalt/Links.h"

#include "Kovalt/HyperlinkPayload.h"
#include "Kovalt/LinkDetection.h"
#include "Kovalt/LogicalLine.h"
#include "Kovalt/TinyAtom.h"

#include <algorithm>

namespace Kovalt {

namespace {

/// Whether the last cell of a row is the gap that a wide character left which did not fit.
bool endsInGap(const Buffer& buffer, int row)
{
    return buffer.getCharAtBufferRelative({buffer.cols() - 1, row}).isNull() &&
           buffer.getCharAtBufferRelative({0, row + 1}).width == 2;
}

/// The cell before another in its logical line; none at the line's beginning.
std::optional<Position> previousCell(const Buffer& buffer, Position cell)
{
    if (cell.col > 0)
        return Position{cell.col - 1, cell.row};
    if (!LogicalLine::continues(buffer, cell.row))
        return std::nullopt;
    const int gap = endsInGap(buffer, cell.row - 1) ? 1 : 0;
    return Position{std::max(buffer.cols() - 1 - gap, 0), cell.row - 1};
}

std::optional<Position> nextCell(const Buffer& buffer, Position cell)
{
    const bool continues = LogicalLine::continues(buffer, cell.row + 1);
    const int gap = continues && endsInGap(buffer, cell.row) ? 1 : 0;
    if (cell.col + 1 < buffer.cols() - gap)
        return Position{cell.col + 1, cell.row};
    return continues ? std::optional(Position{0, cell.row + 1}) : std::nullopt;
}

/// The cells from one to another as parts of rows.
std::vector<LinkMatch::RowRange> rowRanges(const Buffer& buffer, Position first, Position last)
{
    std::vector<LinkMatch::RowRange> ranges;
    for (int row = first.row; row <= last.row; ++row)
        ranges.push_back({row, row == first.row ? first.col : 0,
                          row == last.row ? last.col + 1 : buffer.cols()});
    return ranges;
}

LinkMatch makeMatch(const Buffer& buffer, std::string text, bool isExplicit, Position first,
                    Position last, int row)
{
    LinkMatch match;
    match.text = std::move(text);
    match.isExplicit = isExplicit;
    match.rowRanges = rowRanges(buffer, first, last);
    match.range = match.rowRanges[std::size_t(row - first.row)];
    return match;
}

/// The text around a cell, and which cell each byte of it comes from.
class SurroundingText {
public:
    SurroundingText(const Buffer& buffer, const GraphemeTable& graphemes, Position position)
        : m_buffer(buffer)
        , m_graphemes(graphemes)
    {
        position = LogicalLine::leadOf(buffer, position);
        const Position start = startFor(position);
        for (std::optional<Position> cell = start; cell && text.size() < Most;
             cell = nextCell(buffer, *cell)) {
            if (*cell == position)
                byteOfPosition = text.size();
            append(*cell);
        }
        // What nobody printed is not part of the line.
        text.resize(m_printed);
        cells.resize(m_printed);
    }

    std::string text;
    std::vector<Position> cells; ///< One for each byte.
    /// None for an empty cell that a wide character left when it wrapped early.
    std::optional<std::size_t> byteOfPosition;

private:
    // So that another cell's text still fits.
    static constexpr std::size_t Most = LinkDetection::LongestText - GraphemeTable::LongestGrapheme;

    [[nodiscard]] std::string textOf(Position position) const
    {
        const CharData cell = m_buffer.getCharAtBufferRelative(position);
        return cell.width == 0 ? std::string() : m_graphemes.textFor(cell.code);
    }
    /// Where the line begins, or not more than half of the text before the cell.
    [[nodiscard]] Position startFor(Position position) const
    {
        std::size_t size = 0;
        for (auto cell = previousCell(m_buffer, position); cell;
             cell = previousCell(m_buffer, position)) {
            size += textOf(*cell).size();
            if (size > Most / 2)
                break;
            position = *cell;
        }
        return position;
    }
    void append(Position cell)
    {
        text += textOf(cell);
        cells.resize(text.size(), cell);
        if (m_buffer.getCharAtBufferRelative(cell).code != 0)
            m_printed = text.size();
    }

    const Buffer& m_buffer;
    const GraphemeTable& m_graphemes;
    std::size_t m_printed = 0;
};

} // namespace

std::uint16_t Links::payloadCode(const Buffer& buffer, Position position)
{
    return buffer.getCharAtBufferRelative(position).payload;
}

std::optional<LinkMatch> Links::explicitLinkMatch(const Buffer& buffer, Position position)
{
    const std::uint16_t code = payloadCode(buffer, position);
    const auto payload = TinyAtom::target(code);
    const auto link = payload ? parseHyperlinkPayload(*payload) : std::nullopt;
    if (!link)
        return std::nullopt;
    Position first = position;
    for (auto cell = previousCell(buffer, first); cell && payloadCode(buffer, *cell) == code;
         cell = previousCell(buffer, first))
        first = *cell;
    Position last = position;
    for (auto cell = nextCell(buffer, last); cell && payloadCode(buffer, *cell) == code;
         cell = nextCell(buffer, last))
        last = *cell;
    return makeMatch(buffer, std::string(link->uri), true, first, last, position.row);
}

std::optional<LinkMatch> Links::implicitLinkMatch(const Buffer& buffer,
                                                  const GraphemeTable& graphemes, Position position)
{
    const bool isInside = position.row >= 0 && position.row < buffer.lines().count() &&
                          position.col >= 0 && position.col < buffer.cols();
    if (!isInside)
        return std::nullopt;
    const SurroundingText around(buffer, graphemes, position);
    if (!around.byteOfPosition)
        return std::nullopt;
    const auto match = LinkDetection::findAt(around.text, *around.byteOfPosition);
    if (!match || match->end > around.cells.size())
        return std::nullopt;
    const Position first = around.cells[match->begin];
    Position last = around.cells[match->end - 1];
    // The right half of a wide character is part of it.
    if (buffer.getCharAtBufferRelative(last).width == 2)
        ++last.col;
    return makeMatch(buffer, around.text.substr(match->begin, match->end - match->begin), false,
                     first, last, position.row);
}

} // namespace Kovalt
