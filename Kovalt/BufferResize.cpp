// Another size: rows come and go, the history reflows, the cursor stays on its character.

#include "Kovalt/Buffer.h"
#include "Kovalt/LineReflow.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>

namespace Kovalt {

void Buffer::resize(int newCols, int newRows)
{
    newCols = std::clamp(newCols, 1, BufferLine::MaxSize);
    newRows = std::max(newRows, 1);
    const int oldCols = m_cols;
    if (newCols == m_cols && newRows == m_rows)
        return;

    const bool hadFullMargin = marginRight == oldCols - 1;
    marginRight = hadFullMargin ? newCols - 1 : std::min(marginRight, newCols - 1);
    marginLeft = std::min(marginLeft, marginRight);
    const int length = getCorrectBufferLength(newRows, m_scrollback);
    if (length > m_lines.maxLength())
        m_lines.setMaxLength(length);

    const int oldX = x;
    const int oldSavedX = savedX;
    m_cols = newCols;
    if (m_lines.count() > 0) {
        const int addedToY = newRows < m_rows ? 0 : growRows(newRows);
        if (newRows < m_rows)
            shrinkRows(newRows);
        m_rows = newRows;
        if (m_lines.count() > length)
            trimOldest(m_lines.count() - length);
        y = std::min(y, newRows - 1) + addedToY;
    }
    m_rows = newRows;
    m_lines.setMaxLength(length);
    // A cursor that waits behind a full row goes on waiting if the row stays full.
    x = std::clamp(x, 0, newCols < oldCols ? newCols - 1 : newCols);
    y = std::clamp(y, 0, newRows - 1);
    savedX = std::clamp(savedX, 0, newCols - 1);
    savedY = std::clamp(savedY, 0, newRows - 1);
    scrollTop = 0;
    scrollBottom = newRows - 1;
    tabStops.resize(std::size_t(newCols), false);

    if (newCols != oldCols && m_lines.count() > 0) {
        if (hasScrollback())
            reflow(oldCols, oldX, oldSavedX);
        else
            resizeLines();
    }
    assertLineSizes();
}

void Buffer::shrinkRows(int newRows)
{
    for (int row = m_rows; row > newRows && m_lines.count() > newRows + yBase; --row) {
        if (m_lines.count() > yBase + y + 1) {
            m_lines.pop();
        } else {
            ++yBase;
            ++yDisp;
        }
    }
}

int Buffer::growRows(int newRows)
{
    int addedToY = 0;
    for (int row = m_rows; row < newRows && m_lines.count() < newRows + yBase; ++row) {
        if (yBase > 0 && m_lines.count() <= yBase + y + addedToY + 1) {
            --yBase;
            yDisp = std::max(0, yDisp - 1);
            ++addedToY;
        } else {
            m_lines.push(nullptr);
        }
    }
    return addedToY;
}

void Buffer::resizeLines()
{
    for (int i = 0; i < m_lines.count(); ++i) {
        if (m_lines.peek(i))
            m_lines[i].resize(m_cols);
    }
}

void Buffer::reflow(int oldCols, int cursorX, int savedCursorX)
{
    enum Followed { Cursor, Saved, View, Prompt, FollowedCount };
    using Place = LineReflow::Place;
    const bool followsOutput = yDisp >= yBase;
    const auto promptRow = semantic.promptStartRow ? *semantic.promptStartRow - linesTop : -1;
    std::array<Place, FollowedCount> places;
    places[Cursor] = {yBase + y, std::clamp(cursorX, 0, oldCols)};
    places[Saved] = {yBase + savedY, std::clamp(savedCursorX, 0, oldCols)};
    places[View] = {yDisp, 0};
    places[Prompt] = {int(promptRow), 0};

    ++m_numbering;
    const int oldCount = m_lines.count();
    // Empty rows below the cursor give way to rows that narrowing adds, before history does.
    const auto limit = std::size_t(m_lines.maxLength()) + std::size_t(m_rows);
    LineReflow cutter(oldCols, m_cols, places[Cursor].row);
    LineReflow::Lines lines = cutter.run(m_lines.takeAll(), limit, places);
    const auto isSpare = [&](const std::unique_ptr<BufferLine>& line) {
        return !line || (!line->hasAnyContent() && !line->isWrapped() && !line->hasImages() &&
                         line->semanticMarks().empty());
    };
    while (int(lines.size()) > std::max(oldCount, m_rows) &&
           int(lines.size()) - 1 > places[Cursor].row && isSpare(lines.back()))
        lines.pop_back();

    const int dropped = std::max(0, int(lines.size()) - m_lines.maxLength());
    lines.erase(lines.begin(), lines.begin() + dropped);
    linesTop += dropped;
    if (int(lines.size()) < m_rows)
        lines.resize(std::size_t(m_rows));
    yBase = int(lines.size()) - m_rows;
    m_lines.assign(std::move(lines));

    const auto screenRow = [&](const Place& place) {
        return std::clamp(place.row - dropped - yBase, 0, m_rows - 1);
    };
    // A cursor whose row has left the ring keeps its column as far as there is one.
    x = std::min(places[Cursor].col, m_cols);
    y = screenRow(places[Cursor]);
    savedX = std::min(places[Saved].col, m_cols - 1);
    savedY = screenRow(places[Saved]);
    yDisp = followsOutput ? yBase : std::clamp(places[View].row - dropped, 0, yBase);
    semantic.promptStartRow.reset();
    if (places[Prompt].row >= dropped)
        semantic.promptStartRow = places[Prompt].row - dropped + linesTop;
    recalculateLinesWithImagesCount();
}

void Buffer::assertLineSizes() const
{
    for (int i = 0; i < m_lines.count(); ++i) {
        const BufferLine* const line = m_lines.peek(i);
        if (!line || line->size() == m_cols)
            continue;
        std::fprintf(stderr, "stop here newCols=%d but the element has: %d\n", m_cols,
                     line->size());
        std::abort();
    }
}

} // namespace Kovalt
