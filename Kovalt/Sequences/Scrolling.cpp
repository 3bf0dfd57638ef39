// Rows and columns that move within the margins.

#include "Kovalt/Terminal.h"

#include <algorithm>

namespace Kovalt {

bool Terminal::isCursorInMargins() const
{
    if (!m_modes.marginMode)
        return true;
    const int x = m_buffer->standingColumn();
    return x >= leftMargin() && x <= rightMargin();
}

bool Terminal::isCursorInScrollRegion() const
{
    return m_buffer->y >= m_buffer->scrollTop && m_buffer->y <= m_buffer->scrollBottom &&
           isCursorInMargins();
}

bool Terminal::hasNarrowMargins() const
{
    return m_modes.marginMode && (m_buffer->marginLeft > 0 || m_buffer->marginRight < m_cols - 1);
}

void Terminal::scroll(bool isWrapped)
{
    Buffer& buffer = *m_buffer;
    if (hasNarrowMargins()) {
        moveColumns(buffer.scrollTop, buffer.scrollBottom, -1);
    } else {
        // A row that goes on from the one above looks like it.
        const BufferLine* const above = isWrapped ? &buffer.cursorLine() : nullptr;
        const auto bidi = above ? above->bidiState() : m_currentBidiState;
        const auto renderMode = above ? above->renderMode() : RenderLineMode::Single;
        const bool isWhole = buffer.scrollTop == 0 && buffer.scrollBottom == m_rows - 1;
        buffer.scrollUp(erasedCell().attribute, isWrapped, bidi, m_userScrolling);
        if (renderMode != RenderLineMode::Single)
            buffer.screenLine(buffer.scrollBottom).setRenderMode(renderMode);
        if (isWhole) {
            updateRange(0, true);
            updateRange(buffer.scrollBottom);
        } else {
            noteInPlaceScroll(buffer.scrollTop, buffer.scrollBottom, -1);
        }
    }
    if (m_delegate)
        m_delegate->scrolled(*this, buffer.yDisp);
}

void Terminal::noteInPlaceScroll(int top, int bottom, int lines)
{
    updateRows(top, bottom);
    for (TerminalSelection* const selection : m_selections)
        selection->adjustForInPlaceScroll(*m_buffer, m_buffer->yBase + top,
                                          m_buffer->yBase + bottom, lines);
}

/// A paragraph does not go on over the edge of a region whose rows have moved.
void Terminal::hardenBidiScrollBoundaries(int top, int bottom)
{
    m_buffer->screenLine(top).setWrapped(false);
    if (bottom < m_rows - 1)
        m_buffer->screenLine(bottom + 1).setWrapped(false);
}

/// Moves what is between the left and the right margin by rows, upwards if `n` is negative.
void Terminal::moveColumns(int top, int bottom, int n)
{
    Buffer& buffer = *m_buffer;
    const int left = buffer.marginLeft;
    const int width = buffer.marginRight - left + 1;
    const int count = bottom - top + 1;
    const int distance = std::clamp(n, -count, count);
    const auto copyRow = [&](int row) {
        if (row - distance >= top && row - distance <= bottom)
            buffer.screenLine(row).copyFrom(buffer.screenLine(row - distance), left, left, width);
        else
            buffer.screenLine(row).fill(erasedCell(), left, width);
    };
    if (distance < 0) {
        for (int row = top; row <= bottom; ++row)
            copyRow(row);
    } else {
        for (int row = bottom; row >= top; --row)
            copyRow(row);
    }
    updateRows(top, bottom);
}

void Terminal::scrollRegionUp(int top, int n)
{
    Buffer& buffer = *m_buffer;
    n = std::min(n, buffer.scrollBottom - top + 1);
    if (n <= 0)
        return;
    if (hasNarrowMargins()) {
        moveColumns(top, buffer.scrollBottom, -n);
        return;
    }
    buffer.shiftRowsUp(top, buffer.scrollBottom, n, erasedCell().attribute, m_currentBidiState);
    hardenBidiScrollBoundaries(top, buffer.scrollBottom);
    noteInPlaceScroll(top, buffer.scrollBottom, -n);
}

void Terminal::scrollRegionDown(int top, int n)
{
    Buffer& buffer = *m_buffer;
    n = std::min(n, buffer.scrollBottom - top + 1);
    if (n <= 0)
        return;
    if (hasNarrowMargins()) {
        moveColumns(top, buffer.scrollBottom, n);
        return;
    }
    buffer.shiftRowsDown(top, buffer.scrollBottom, n, erasedCell().attribute, m_currentBidiState);
    if (top + n <= buffer.scrollBottom)
        buffer.screenLine(top + n).setWrapped(false);
    hardenBidiScrollBoundaries(top, buffer.scrollBottom);
    noteInPlaceScroll(top, buffer.scrollBottom, n);
}

void Terminal::cmdScrollUp(int n)
{
    scrollRegionUp(m_buffer->scrollTop, n);
}

void Terminal::cmdScrollDown(int n)
{
    scrollRegionDown(m_buffer->scrollTop, n);
}

/// Columns from `column` to the right margin go right (`back`) or left, in every row of the region.
void Terminal::columnScroll(bool back, int column, int n)
{
    if (isCursorInScrollRegion())
        shiftColumns(back, column, n);
}

void Terminal::shiftColumns(bool back, int column, int n)
{
    Buffer& buffer = *m_buffer;
    for (int row = buffer.scrollTop; row <= buffer.scrollBottom; ++row) {
        BufferLine& line = buffer.screenLine(row);
        if (back)
            line.insertCells(column, n, rightMargin(), erasedCell());
        else
            line.deleteCells(column, n, rightMargin(), erasedCell());
    }
    updateRows(buffer.scrollTop, buffer.scrollBottom);
}

/// One column back or forward; at the margin the columns move instead.
void Terminal::columnIndex(bool back)
{
    Buffer& buffer = *m_buffer;
    endWaiting();
    const int margin = back ? leftMargin() : rightMargin();
    if (buffer.x == margin)
        columnScroll(back, leftMargin(), 1);
    else if (back)
        buffer.x = std::max(0, buffer.x - 1);
    else
        buffer.x = std::min(m_cols - 1, buffer.x + 1);
}

} // namespace Kovalt
