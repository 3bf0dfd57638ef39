// The cursor: where it goes, where it stops, what it remembers.

#include "Kovalt/Terminal.h"

#include <algorithm>

namespace Kovalt {

namespace {

/// Level and sets in the 32 bits that a buffer keeps: 2 bits of level, 6 bits a set.
std::uint32_t packed(const CharsetState& charsets)
{
    std::uint32_t bits = charsets.gLevel;
    for (std::size_t i = 0; i < charsets.gCharsets.size(); ++i)
        bits |= static_cast<std::uint32_t>(charsets.gCharsets[i]) << (2 + 6 * i);
    return bits;
}

CharsetState unpacked(std::uint32_t bits)
{
    CharsetState charsets;
    charsets.gLevel = bits & 3;
    for (std::size_t i = 0; i < charsets.gCharsets.size(); ++i)
        charsets.gCharsets[i] = static_cast<CharSetId>(bits >> (2 + 6 * i) & 63);
    return charsets;
}

} // namespace

void Terminal::restrictCursor(bool allowPastEnd)
{
    Buffer& buffer = *m_buffer;
    if (allowPastEnd)
        buffer.x = std::clamp(buffer.x, 0, m_cols);
    else
        endWaiting();
    buffer.y = m_modes.originMode ? std::clamp(buffer.y, buffer.scrollTop, buffer.scrollBottom)
                                  : std::clamp(buffer.y, 0, m_rows - 1);
    updateRange(buffer.y);
}

void Terminal::endWaiting()
{
    Buffer& buffer = *m_buffer;
    if (!buffer.waits && buffer.x >= 0 && buffer.x < m_cols)
        return;
    buffer.x = buffer.standingColumn();
    buffer.waits = false;
}

void Terminal::setCursor(int col, int row)
{
    const bool isRelative = m_modes.originMode;
    m_buffer->y = isRelative ? row + m_buffer->scrollTop : row;
    moveToColumn(isRelative ? col + leftMargin() : col);
}

void Terminal::moveToColumn(int col)
{
    m_buffer->waits = false;
    m_buffer->x = col;
    restrictCursor();
}

/// Any row of the screen, whatever the margins.
void Terminal::moveToRow(int row)
{
    endWaiting();
    m_buffer->y = std::clamp(row, 0, m_rows - 1);
}

void Terminal::cmdBackspace()
{
    Buffer& buffer = *m_buffer;
    restrictCursor(m_modes.reverseWraparound || wrapsOverAnyEnd());
    const int left = buffer.x >= leftMargin() ? leftMargin() : 0;
    if (buffer.x > left)
        --buffer.x;
    else if (wrapBackward())
        buffer.x = rightMargin();
}

bool Terminal::wrapBackward()
{
    Buffer& buffer = *m_buffer;
    if (!m_modes.reverseWraparound && !wrapsOverAnyEnd())
        return false;
    const bool goesOn =
        m_modes.reverseWraparound && buffer.y > 0 && buffer.cursorLine().isWrapped();
    if (buffer.y == buffer.scrollTop && !goesOn)
        buffer.y = buffer.scrollBottom;
    else if (goesOn || (buffer.y > 0 && wrapsOverAnyEnd()))
        --buffer.y;
    else
        return false;
    updateRange(buffer.y);
    return true;
}

void Terminal::cmdCarriageReturn()
{
    m_buffer->x = leftMargin();
}

/// One row down, scrolling at the end of the region.
void Terminal::advanceLine()
{
    Buffer& buffer = *m_buffer;
    if (buffer.y == buffer.scrollBottom) {
        if (isCursorInMargins())
            scroll(false);
    } else if (buffer.y < m_rows - 1) {
        updateRange(buffer.y);
        ++buffer.y;
        BufferLine& line = buffer.cursorLine();
        if (!line.isWrapped())
            line.setBidiState(m_currentBidiState);
        updateRange(buffer.y);
    }
    endWaiting();
    finishSemanticLineAdvance();
}

void Terminal::cmdLineFeedBasic()
{
    advanceLine();
    if (m_delegate)
        m_delegate->linefeed(*this);
    if (m_modes.lineFeedMode)
        m_buffer->x = m_modes.originMode ? leftMargin() : 0;
}

void Terminal::cmdIndex()
{
    restrictCursor();
    advanceLine();
}

void Terminal::cmdNextLine()
{
    m_buffer->x = m_modes.originMode ? leftMargin() : 0;
    cmdIndex();
}

void Terminal::reverseIndex()
{
    restrictCursor();
    Buffer& buffer = *m_buffer;
    if (buffer.y == buffer.scrollTop) {
        if (isCursorInMargins())
            scrollRegionDown(buffer.scrollTop, 1);
    } else if (buffer.y > 0) {
        --buffer.y;
        updateRange(buffer.y);
    }
}

void Terminal::cursorUp(int n)
{
    Buffer& buffer = *m_buffer;
    const int limit = buffer.y >= buffer.scrollTop ? buffer.scrollTop : 0;
    endWaiting();
    buffer.y = std::max(limit, buffer.y - n);
}

void Terminal::cursorDown(int n)
{
    Buffer& buffer = *m_buffer;
    const int limit = buffer.y <= buffer.scrollBottom ? buffer.scrollBottom : m_rows - 1;
    endWaiting();
    buffer.y = std::min(limit, buffer.y + n);
}

void Terminal::cursorForward(int n)
{
    Buffer& buffer = *m_buffer;
    endWaiting();
    const int limit = buffer.x <= rightMargin() ? rightMargin() : m_cols - 1;
    buffer.x = std::min(limit, buffer.x + n);
}

void Terminal::cursorBackward(int n)
{
    Buffer& buffer = *m_buffer;
    endWaiting();
    for (;;) {
        const int limit = buffer.x >= leftMargin() ? leftMargin() : 0;
        const int steps = std::min(n, buffer.x - limit);
        buffer.x -= steps;
        n -= steps;
        if (n == 0 || !wrapsOverAnyEnd() || !wrapBackward())
            return;
        buffer.x = rightMargin();
        --n;
    }
}

void Terminal::cmdSaveCursor()
{
    Buffer& buffer = *m_buffer;
    buffer.savedX = buffer.x;
    buffer.savedY = buffer.y;
    buffer.savedWaits = buffer.waits;
    buffer.savedAttr = m_curAttr;
    buffer.savedCharset = packed(m_charsets);
    buffer.savedOriginMode = m_modes.originMode;
    buffer.savedMarginMode = m_modes.marginMode;
    buffer.savedWraparound = m_modes.wraparound;
    buffer.savedReverseWraparound = m_modes.reverseWraparound;
}

void Terminal::cmdRestoreCursor()
{
    Buffer& buffer = *m_buffer;
    buffer.x = std::clamp(buffer.savedX, 0, m_cols);
    buffer.y = std::clamp(buffer.savedY, 0, m_rows - 1);
    buffer.waits = buffer.savedWaits;
    m_curAttr = buffer.savedAttr;
    m_charsets = unpacked(buffer.savedCharset);
    m_modes.originMode = buffer.savedOriginMode;
    m_modes.marginMode = m_normalBuffer.marginMode = m_altBuffer.marginMode =
        buffer.savedMarginMode;
    m_modes.reverseWraparound = buffer.savedReverseWraparound;
    setWraparound(buffer.savedWraparound);
    updateRange(buffer.y);
}

void Terminal::cmdSetCursorStyle(int style)
{
    if (style <= 6)
        setCursorStyle(static_cast<CursorStyle>(std::max(0, style - 1)));
}

} // namespace Kovalt
