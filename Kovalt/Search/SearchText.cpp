#include "Kovalt/Search/SearchText.h"

#include "Kovalt/GraphemeTable.h"
#include "Kovalt/LogicalLine.h"

#include <algorithm>

namespace Kovalt {

SearchText::SearchText(const Buffer& buffer, const GraphemeTable& graphemes)
    : m_buffer(buffer)
    , m_graphemes(graphemes)
{
}

void SearchText::assign(int firstRow, int lastRow)
{
    m_firstRow = firstRow;
    m_text.clear();
    m_starts.clear();
    for (int row = firstRow; row <= lastRow; ++row) {
        m_starts.push_back(m_text.size());
        const ColumnRange columns{0, LogicalLine::length(m_buffer, row)};
        LogicalLine::appendText(m_buffer, m_graphemes, row, columns, m_text);
    }
    m_starts.push_back(m_text.size());
    m_row = firstRow;
    m_col = 0;
    m_byte = 0;
}

std::size_t SearchText::sizeOf(const CharData& cell)
{
    if (cell.width == 0)
        return 0;
    if (cell.code >= 0 && cell.code < 0x80)
        return 1;
    m_scratch.clear();
    m_graphemes.appendText(m_scratch, cell.code);
    return m_scratch.size();
}

std::size_t SearchText::byteAt(TextPosition place)
{
    const int rows = int(m_starts.size()) - 1;
    const std::int64_t index = place.row - m_buffer.linesTop - m_firstRow;
    if (index < 0)
        return 0;
    if (index >= rows)
        return m_text.size();
    const int row = m_firstRow + int(index);
    std::size_t byte = startOf(row);
    for (int col = 0; col < place.col && byte < startOf(row + 1); ++col)
        byte += sizeOf(LogicalLine::cell(m_buffer, {col, row}));
    return std::min(byte, startOf(row + 1));
}

SearchText::Character SearchText::characterAt(std::size_t byte)
{
    while (startOf(m_row + 1) <= byte) {
        ++m_row;
        m_col = 0;
        m_byte = startOf(m_row);
    }
    for (;; ++m_col) {
        const CharData cell = LogicalLine::cell(m_buffer, {m_col, m_row});
        const std::size_t size = sizeOf(cell);
        if (byte < m_byte + size || m_col >= m_buffer.cols()) {
            const std::int64_t row = m_row + m_buffer.linesTop;
            return {{row, m_col}, {row, m_col + std::max<int>(1, cell.width)}, m_byte + size};
        }
        m_byte += size;
    }
}

} // namespace Kovalt
