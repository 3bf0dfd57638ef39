#pragma once

#include "Kovalt/Buffer.h"
#include "Kovalt/TextPosition.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Kovalt {

class GraphemeTable;

/// The text of rows that belong together, and the way from its bytes back to cells. Places are
/// asked for from left to right: the way goes on from the last one.
class SearchText {
public:
    SearchText(const Buffer& buffer, const GraphemeTable& graphemes);

    /// Takes the text of these rows of the ring, empty cells at the end of each left out.
    void assign(int firstRow, int lastRow);

    [[nodiscard]] std::string_view text() const { return m_text; }
    /// Where the text of a row begins; behind the last row where all ends.
    [[nodiscard]] std::size_t startOf(int row) const
    {
        return m_starts[std::size_t(row - m_firstRow)];
    }
    [[nodiscard]] std::string_view rowText(int row) const
    {
        return text().substr(startOf(row), startOf(row + 1) - startOf(row));
    }
    /// The first byte at or behind a place.
    [[nodiscard]] std::size_t byteAt(TextPosition place);

    /// A character by its cells and bytes.
    struct Character {
        TextPosition begin;
        TextPosition end;
        std::size_t endByte = 0;
    };
    /// The character that holds the byte, which is inside the text and not before the last one
    /// that was asked for.
    [[nodiscard]] Character characterAt(std::size_t byte);

private:
    [[nodiscard]] std::size_t sizeOf(const CharData& cell);

    const Buffer& m_buffer;
    const GraphemeTable& m_graphemes;
    int m_firstRow = 0;
    std::string m_text;
    std::vector<std::size_t> m_starts;
    std::string m_scratch;

    // The character that the way has come to.
    int m_row = 0;
    int m_col = 0;
    std::size_t m_byte = 0;
};

} // namespace Kovalt
