#include "Kovalt/Buffer.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace Kovalt {

Buffer::Buffer(const Options& options)
    : defaultBidiState(options.bidiState)
    , m_cols(std::clamp(options.cols, 1, BufferLine::MaxSize))
    , m_rows(std::max(options.rows, 1))
    , m_scrollback(options.scrollback)
    , m_lines(getCorrectBufferLength(m_rows, options.scrollback), *this)
{
    scrollBottom = m_rows - 1;
    marginRight = m_cols - 1;
    setupTabStops(-1, options.tabStopWidth);
}

Buffer::~Buffer() = default;

int Buffer::getCorrectBufferLength(int rows, std::optional<int> scrollback)
{
    constexpr std::int64_t Longest = 0x7FFFFFFF;
    const std::int64_t history = std::max(0, scrollback.value_or(0));
    return int(std::min(rows + history, Longest));
}

BufferHost& Buffer::host() const
{
    if (!m_host) {
        std::fputs("This should be set after creating a buffer\n", stderr);
        std::abort();
    }
    return *m_host;
}

void Buffer::ensureScreen()
{
    while (m_lines.count() < m_rows)
        m_lines.push(nullptr);
    yBase = std::clamp(yBase, 0, m_lines.count() - m_rows);
}

std::unique_ptr<BufferLine> Buffer::makeEmpty()
{
    return getBlankLine({});
}

void Buffer::linePushed(bool hasImages)
{
    m_linesWithImagesCount += hasImages ? 1 : 0;
}

void Buffer::lineRecycled(bool hadImages)
{
    m_linesWithImagesCount -= hadImages ? 1 : 0;
}

std::unique_ptr<BufferLine> Buffer::getBlankLine(const Attribute& attribute, bool isWrapped) const
{
    return std::make_unique<BufferLine>(m_cols, getNullCell(attribute), isWrapped,
                                        defaultBidiState);
}

CharData Buffer::getNullCell(const Attribute& attribute)
{
    return CharData::null(attribute);
}

CharData Buffer::getChar(Position position) const
{
    return getCharAtBufferRelative({position.col, position.row + yDisp});
}

CharData Buffer::getCharAtBufferRelative(Position position) const
{
    const bool isInside = position.row >= 0 && position.row < m_lines.count() &&
                          position.col >= 0 && position.col < m_cols;
    const BufferLine* const line = isInside ? m_lines.peek(position.row) : nullptr;
    return line ? (*line)[position.col] : CharData{};
}

bool Buffer::isCursorInViewPort() const
{
    const int row = yBase + y - yDisp;
    return row >= 0 && row < m_rows;
}

void Buffer::fillViewportRows(const Attribute& attribute)
{
    if (m_lines.count() > 0)
        return;
    for (int row = 0; row < m_rows; ++row)
        m_lines.push(attribute == Attribute{} ? nullptr : getBlankLine(attribute));
}

void Buffer::clear()
{
    m_lines.trimStart(m_lines.count());
    ++m_numbering;
    m_linesWithImagesCount = 0;
    x = y = 0;
    waits = false;
    yBase = yDisp = 0;
    linesTop = 0;
    scrollTop = 0;
    scrollBottom = m_rows - 1;
    marginLeft = 0;
    marginRight = m_cols - 1;
    semantic = {};
}

void Buffer::softReset()
{
    curAttr = savedAttr = {};
    savedX = savedY = 0;
    savedCharset = 0;
    marginLeft = 0;
    marginRight = m_cols - 1;
    savedWaits = false;
    savedOriginMode = savedMarginMode = savedWraparound = savedReverseWraparound = false;
}

void Buffer::trimOldest(int n)
{
    m_lines.trimStart(n);
    linesTop += n;
    yBase = std::max(0, yBase - n);
    yDisp = std::max(0, yDisp - n);
    savedY = std::max(0, savedY - n);
    if (semantic.promptStartRow && *semantic.promptStartRow < linesTop)
        semantic.promptStartRow.reset();
}

void Buffer::clearScrollback()
{
    const int history = yBase;
    trimOldest(history);
    yBase = yDisp = 0;
}

void Buffer::changeHistorySize(std::optional<int> newScrollback)
{
    m_scrollback = newScrollback;
    const int length = getCorrectBufferLength(m_rows, m_scrollback);
    if (m_lines.count() > length)
        trimOldest(m_lines.count() - length);
    m_lines.setMaxLength(length);
}

void Buffer::attachImage(std::shared_ptr<TerminalImage> image, int ringRow)
{
    if (ringRow < 0 || ringRow >= m_lines.count())
        return;
    BufferLine& line = m_lines[ringRow];
    m_linesWithImagesCount += line.hasImages() ? 0 : 1;
    line.attach(std::move(image));
}

void Buffer::clearImagesFromLine(int ringRow)
{
    if (ringRow < 0 || ringRow >= m_lines.count() || !m_lines[ringRow].hasImages())
        return;
    m_lines[ringRow].removeImages();
    --m_linesWithImagesCount;
}

void Buffer::recalculateLinesWithImagesCount()
{
    m_linesWithImagesCount = 0;
    for (int i = 0; i < m_lines.count(); ++i) {
        const BufferLine* const line = m_lines.peek(i);
        m_linesWithImagesCount += line && line->hasImages() ? 1 : 0;
    }
}

} // namespace Kovalt
