#include "Kovalt/Selection/WordBounds.h"

#include "Kovalt/GraphemeTable.h"
#include "Kovalt/LinkDetection.h"
#include "Kovalt/LogicalLine.h"
#include "Kovalt/UnicodeUtil.h"
#include "Kovalt/Utf8.h"
#include "Kovalt/WordSegments.h"

#include <algorithm>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Kovalt {

namespace {

/// Characters around a cell that are all blank, or of which none is.
class Piece {
public:
    Piece(const Buffer& buffer, const GraphemeTable& graphemes, Position position)
        : m_buffer(buffer)
        , m_graphemes(graphemes)
        , m_isBlank(isBlank(position))
    {
        m_cells.push_back(position);
        std::size_t size = 0;
        for (auto cell = LogicalLine::previous(buffer, position); cell && takes(*cell, size);
             cell = LogicalLine::previous(buffer, *cell)) {
            m_cells.push_front(*cell);
            ++m_index;
        }
        size = 0;
        for (auto cell = LogicalLine::next(buffer, position); cell && takes(*cell, size);
             cell = LogicalLine::next(buffer, *cell))
            m_cells.push_back(*cell);
    }

    [[nodiscard]] bool isBlank() const { return m_isBlank; }
    [[nodiscard]] std::size_t count() const { return m_cells.size(); }
    /// Where the cell that was asked for stands.
    [[nodiscard]] std::size_t index() const { return m_index; }
    [[nodiscard]] WordBounds::Word word(std::size_t first, std::size_t last) const
    {
        return {m_cells[first], m_cells[last]};
    }
    [[nodiscard]] std::string text(std::size_t index) const
    {
        return m_graphemes.textFor(LogicalLine::cell(m_buffer, m_cells[index]).code);
    }

private:
    [[nodiscard]] bool isBlank(Position position) const
    {
        const std::int32_t code = LogicalLine::cell(m_buffer, position).code;
        return UnicodeUtil::generalCategory(m_graphemes.firstScalar(code)) == GeneralCategory::Zs;
    }
    [[nodiscard]] bool takes(Position position, std::size_t& size) const
    {
        if (isBlank(position) != m_isBlank)
            return false;
        size += m_graphemes.textFor(LogicalLine::cell(m_buffer, position).code).size();
        return size < WordBounds::Reach;
    }

    const Buffer& m_buffer;
    const GraphemeTable& m_graphemes;
    const bool m_isBlank;
    std::deque<Position> m_cells;
    std::size_t m_index = 0;
};

/// Where each unit of text begins, and behind the last where the text ends.
using Starts = std::vector<std::size_t>;

std::size_t unitAt(const Starts& starts, std::size_t place)
{
    const auto after = std::upper_bound(starts.begin(), starts.end(), place);
    return std::size_t(after - starts.begin()) - 1;
}

/// A path takes the mark that ends the sentence too; it isn't meant.
std::size_t withoutSentenceEnd(std::string_view text, std::size_t end)
{
    constexpr std::string_view Marks = ".!?;";
    const auto isName = [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
               c == '/' || c == '_' || static_cast<unsigned char>(c) >= 0x80;
    };
    const bool isSentence =
        end > 1 && Marks.find(text[end - 1]) != std::string_view::npos && isName(text[end - 2]);
    return isSentence ? end - 1 : end;
}

std::optional<WordBounds::Word> linkIn(const Piece& piece)
{
    std::string text;
    Starts starts;
    for (std::size_t i = 0; i < piece.count(); ++i) {
        starts.push_back(text.size());
        text += piece.text(i);
    }
    starts.push_back(text.size());
    const std::size_t place = starts[piece.index()];
    const auto match = LinkDetection::findAt(text, place);
    if (!match)
        return std::nullopt;
    const std::size_t end = withoutSentenceEnd(text, match->end);
    if (place >= end)
        return std::nullopt;
    return piece.word(unitAt(starts, match->begin), unitAt(starts, end - 1));
}

WordBounds::Word unicodeWordIn(const Piece& piece)
{
    std::u32string text;
    Starts starts;
    for (std::size_t i = 0; i < piece.count(); ++i) {
        starts.push_back(text.size());
        text += Utf8::decode(piece.text(i));
    }
    std::size_t first = piece.index();
    while (first > 0 && !WordSegments::isBoundary(text, starts[first]))
        --first;
    std::size_t last = piece.index();
    while (last + 1 < piece.count() && !WordSegments::isBoundary(text, starts[last + 1]))
        ++last;
    return piece.word(first, last);
}

} // namespace

WordBounds::Word WordBounds::around(const Buffer& buffer, const GraphemeTable& graphemes,
                                    Position cell)
{
    const Piece piece(buffer, graphemes, LogicalLine::leadOf(buffer, cell));
    if (piece.isBlank())
        return piece.word(0, piece.count() - 1);
    if (const auto link = linkIn(piece))
        return *link;
    return unicodeWordIn(piece);
}

} // namespace Kovalt
