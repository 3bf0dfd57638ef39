#include "Kovalt/PromptClick.h"

#include "Kovalt/LogicalLine.h"

#include <algorithm>

namespace Kovalt {

namespace {

using Mode = SemanticPromptClickMode;

/// Whether the row goes on with the prompt above it.
bool continuesPrompt(const Buffer& buffer, int row)
{
    const BufferLine* const line = LogicalLine::rowAt(buffer, row);
    return line && (line->isWrapped() ||
                    line->semanticHardContinuationGroup() == buffer.semantic.activeGroup);
}

bool hasMark(const Buffer& buffer, int row, SemanticMark::Kind kind)
{
    const BufferLine* const line = LogicalLine::rowAt(buffer, row);
    if (!line)
        return false;
    const auto marks = line->semanticMarks();
    return std::any_of(marks.begin(), marks.end(), [&](const SemanticMark& mark) {
        return mark.kind == kind && mark.group == buffer.semantic.activeGroup;
    });
}

bool isInput(const Buffer& buffer, Position cell)
{
    const CharData data = buffer.getCharAtBufferRelative(cell);
    return data.semantic == SemanticCode::Input && data.code != 0;
}

/// It may stand behind the last column.
Position cursorOf(const Buffer& buffer)
{
    return {std::min(buffer.x, buffer.cols()), buffer.yBase + buffer.y};
}

int firstRowOfPrompt(const Buffer& buffer, int row)
{
    while (row > 0 && continuesPrompt(buffer, row))
        --row;
    return row;
}

/// A line of the input as its editor knows it: rows that wrap are one.
struct InputLine {
    int firstRow;
    int lastRow;
};

InputLine inputLineAt(const Buffer& buffer, std::pair<int, int> rows, int row)
{
    InputLine line{row, row};
    while (line.firstRow > rows.first && LogicalLine::continues(buffer, line.firstRow))
        --line.firstRow;
    while (line.lastRow < rows.second && LogicalLine::continues(buffer, line.lastRow + 1))
        ++line.lastRow;
    return line;
}

/// Characters of the input in the line before the cell.
int charactersBefore(const Buffer& buffer, const InputLine& line, Position cell)
{
    int count = 0;
    for (int row = line.firstRow; row <= std::min(line.lastRow, cell.row); ++row) {
        const int end = row == cell.row ? cell.col : buffer.cols();
        for (int col = 0; col < end; ++col)
            count += isInput(buffer, {col, row}) ? 1 : 0;
    }
    return count;
}

int charactersOf(const Buffer& buffer, const InputLine& line)
{
    return charactersBefore(buffer, line, {buffer.cols(), line.lastRow});
}

/// A place in the input: which of its lines, and behind how many characters of it.
struct Place {
    InputLine line;
    int characters;
};

Place placeOf(const Buffer& buffer, std::pair<int, int> rows, Position cell)
{
    const InputLine line = inputLineAt(buffer, rows, cell.row);
    // The right half of a wide character means the character.
    while (cell.col > 0 && buffer.getCharAtBufferRelative(cell).width == 0)
        --cell.col;
    return {line, charactersBefore(buffer, line, cell)};
}

/// Steps to the right, each line's end counting as one character.
int charactersBetween(const Buffer& buffer, std::pair<int, int> rows, const Place& from,
                      const Place& to)
{
    if (from.line.firstRow > to.line.firstRow)
        return -charactersBetween(buffer, rows, to, from);
    int count = to.characters - from.characters;
    for (InputLine line = from.line; line.firstRow < to.line.firstRow;
         line = inputLineAt(buffer, rows, line.lastRow + 1))
        count += charactersOf(buffer, line) + 1;
    return count;
}

int linesBetween(const Buffer& buffer, std::pair<int, int> rows, InputLine from, InputLine to)
{
    if (from.firstRow > to.firstRow)
        return -linesBetween(buffer, rows, to, from);
    int count = 0;
    for (; from.firstRow < to.firstRow; from = inputLineAt(buffer, rows, from.lastRow + 1))
        ++count;
    return count;
}

} // namespace

std::optional<std::pair<int, int>> PromptClick::inputRows(const Buffer& buffer)
{
    const SemanticState& state = buffer.semantic;
    if (state.input != SemanticInputState::Armed || state.activeGroup == 0)
        return std::nullopt;
    const int cursorRow = cursorOf(buffer).row;
    // The prompt's own rows stand above the input.
    int first = firstRowOfPrompt(buffer, cursorRow);
    while (first < cursorRow && !hasMark(buffer, first, SemanticMark::Kind::Input))
        ++first;
    int last = cursorRow;
    while (last + 1 < buffer.lines().count() && continuesPrompt(buffer, last + 1))
        ++last;
    return std::pair(first, last);
}

std::optional<int> PromptClick::promptRow(const Buffer& buffer)
{
    const auto rows = inputRows(buffer);
    if (!rows)
        return std::nullopt;
    return firstRowOfPrompt(buffer, rows->first);
}

std::optional<PromptClick::Steps> PromptClick::stepsTo(const Buffer& buffer, Position cell)
{
    const auto rows = inputRows(buffer);
    const bool isInside = rows && cell.row >= rows->first && cell.row <= rows->second &&
                          cell.col >= 0 && cell.col < buffer.cols();
    if (!isInside)
        return std::nullopt;
    const Place from = placeOf(buffer, *rows, cursorOf(buffer));
    const Place to = placeOf(buffer, *rows, cell);
    const int lines = linesBetween(buffer, *rows, from.line, to.line);
    const int along = to.characters - from.characters;
    if (lines == 0)
        return Steps{0, 0, along};
    switch (buffer.semantic.clickMode) {
    case Mode::CursorKeysMultiple:
        return Steps{0, 0, charactersBetween(buffer, *rows, from, to)};
    case Mode::CursorKeysConservativeVertical:
        // Only the beginning of a line is above and below every other one.
        return Steps{from.characters, lines, to.characters};
    case Mode::CursorKeysSmartVertical: {
        // The editor keeps the column, as far as the other line reaches.
        const int reached = std::min(from.characters, charactersOf(buffer, to.line));
        return Steps{0, lines, to.characters - reached};
    }
    default:
        return std::nullopt;
    }
}

} // namespace Kovalt
