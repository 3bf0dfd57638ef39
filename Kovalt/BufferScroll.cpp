// Rows that move within the screen and from it to the history.

#include "Kovalt/Buffer.h"

#include <algorithm>

namespace Kovalt {

void Buffer::beginRow(BufferLine& line, const Attribute& fill, bool isWrapped,
                      const BidiPresentationState& bidi)
{
    if (line.hasImages())
        --m_linesWithImagesCount;
    line.recycle(fill);
    line.setWrapped(isWrapped);
    line.setBidiState(bidi);
}

void Buffer::scrollUp(const Attribute& fill, bool isWrapped, const BidiPresentationState& bidi,
                      bool userScrolling)
{
    if (scrollTop > 0 || scrollBottom < m_rows - 1) {
        shiftRowsUp(scrollTop, scrollBottom, 1, fill, bidi);
        screenLine(scrollBottom).setWrapped(isWrapped);
        return;
    }
    if (m_lines.count() < yBase + m_rows)
        ensureScreen();
    if (m_lines.isFull()) {
        BufferLine& line = m_lines.recycle(fill);
        line.setWrapped(isWrapped);
        line.setBidiState(bidi);
        ++linesTop;
        if (semantic.promptStartRow && *semantic.promptStartRow < linesTop)
            semantic.promptStartRow.reset();
        return;
    }
    m_lines.push(std::make_unique<BufferLine>(m_cols, getNullCell(fill), isWrapped, bidi));
    ++yBase;
    if (!userScrolling)
        yDisp = yBase;
}

void Buffer::shiftRowsUp(int top, int bottom, int n, const Attribute& fill,
                         const BidiPresentationState& bidi)
{
    top = std::clamp(top, 0, m_rows - 1);
    bottom = std::clamp(bottom, 0, m_rows - 1);
    const int count = bottom - top + 1;
    n = std::min(n, count);
    if (n <= 0)
        return;
    if (m_lines.count() < yBase + m_rows)
        ensureScreen();
    m_lines.rotate(yBase + top, count, n);
    for (int row = bottom - n + 1; row <= bottom; ++row)
        beginRow(screenLine(row), fill, false, bidi);
}

void Buffer::shiftRowsDown(int top, int bottom, int n, const Attribute& fill,
                           const BidiPresentationState& bidi)
{
    top = std::clamp(top, 0, m_rows - 1);
    bottom = std::clamp(bottom, 0, m_rows - 1);
    const int count = bottom - top + 1;
    n = std::min(n, count);
    if (n <= 0)
        return;
    if (m_lines.count() < yBase + m_rows)
        ensureScreen();
    m_lines.rotate(yBase + top, count, count - n);
    for (int row = top; row < top + n; ++row)
        beginRow(screenLine(row), fill, false, bidi);
}

} // namespace Kovalt
