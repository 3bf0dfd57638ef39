#include "Kovalt/BufferLine.h"

#include "Kovalt/GraphemeTable.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <new>

namespace Kovalt {

namespace {

/// Whether the cell is an erased one that has nothing but a background.
bool isBlank(const CharData& cell)
{
    return cell.code == 0 && cell.width == 1 && cell.payload == 0 &&
           cell.semantic == SemanticCode::None && cell.attribute.hasOnlyBackground();
}

CharData* allocateCells(int count)
{
    return static_cast<CharData*>(::operator new(std::size_t(count) * sizeof(CharData)));
}

void copyCells(CharData* to, const CharData* from, int count)
{
    if (count > 0)
        std::memcpy(to, from, std::size_t(count) * sizeof(CharData));
}

void moveCells(CharData* to, const CharData* from, int count)
{
    std::memmove(to, from, std::size_t(count) * sizeof(CharData));
}

void makeBlank(CharData& cell)
{
    cell.code = 0;
    cell.width = 1;
    cell.payload = 0;
}

} // namespace

BufferLine::BufferLine(int cols, const CharData& cell, bool isWrapped,
                       const BidiPresentationState& bidi)
    : m_size(std::uint16_t(std::clamp(cols, 0, MaxSize)))
    , m_bidiState(0)
    , m_renderMode(RenderLineMode::Single)
    , m_isWrapped(isWrapped)
    , m_continuesEarly(false)
{
    setBidiState(bidi);
    fill(cell);
    m_generation = 0;
}

BufferLine::BufferLine(const BufferLine& other)
    : m_extra(other.m_extra ? std::make_unique<Extra>(*other.m_extra) : nullptr)
    , m_generation(other.m_generation)
    , m_recycleGeneration(other.m_recycleGeneration)
    , m_blankBackground(other.m_blankBackground)
    , m_size(other.m_size)
    , m_bidiState(other.m_bidiState)
    , m_renderMode(other.m_renderMode)
    , m_isWrapped(other.m_isWrapped)
    , m_continuesEarly(other.m_continuesEarly)
{
    reserve(other.m_live);
    copyCells(m_cells, other.m_cells, other.m_live);
    m_live = other.m_live;
}

BufferLine::~BufferLine()
{
    ::operator delete(m_cells);
}

int BufferLine::clamped(int column) const
{
    if (column >= 0 && column < m_size)
        return column;
    std::fputs("BufferLine: You passed an index out of range, adjusting to prevent crash, "
               "but you should debug\n",
               stderr);
    return std::max(0, m_size - 1);
}

void BufferLine::reserve(int count)
{
    if (count <= m_capacity)
        return;
    // Rows grow by halves at least, in steps of eight cells, and never beyond their width.
    int wanted = std::max((count + 7) & ~7, m_capacity + m_capacity / 2);
    wanted = std::max(count, std::min<int>(wanted, m_size));
    CharData* const cells = allocateCells(wanted);
    copyCells(cells, m_cells, m_live);
    ::operator delete(m_cells);
    m_cells = cells;
    m_capacity = std::uint16_t(wanted);
}

void BufferLine::materialize(int count)
{
    if (count <= m_live)
        return;
    reserve(count);
    std::fill(m_cells + m_live, m_cells + count, blank());
    m_live = std::uint16_t(count);
}

void BufferLine::extendLive(int column, int end)
{
    materialize(column);
    reserve(end);
    m_live = std::uint16_t(end);
}

CharData BufferLine::blank() const
{
    Attribute looks;
    looks.bg = m_blankBackground;
    return CharData::null(looks);
}

CharData BufferLine::operator[](int column) const
{
    column = clamped(column);
    return column < m_live ? m_cells[column] : blank();
}

void BufferLine::set(int column, const CharData& cell)
{
    column = clamped(column);
    if (column < m_size)
        *overwrite(column, 1) = cell;
}

CharData* BufferLine::writable(int count)
{
    ++m_generation;
    materialize(std::clamp<int>(count, 0, m_size));
    return m_cells;
}

void BufferLine::blankPair(int column)
{
    makeBlank(m_cells[column - 1]);
    makeBlank(m_cells[column]);
}

void BufferLine::setBlanks(int column, const CharData& cell)
{
    if (m_live < column && m_blankBackground != cell.attribute.bg)
        materialize(column);
    m_live = std::min(m_live, std::uint16_t(column));
    m_blankBackground = cell.attribute.bg;
}

void BufferLine::setWrapped(bool isWrapped)
{
    if (m_isWrapped == isWrapped)
        return;
    m_isWrapped = isWrapped;
    ++m_generation;
}

BidiPresentationState BufferLine::bidiState() const
{
    using State = BidiPresentationState;
    State state;
    state.supportMode = State::SupportMode(m_bidiState & 1);
    state.autodetectDirection = (m_bidiState & 2) != 0;
    state.fallbackDirection = State::Direction(m_bidiState >> 2 & 1);
    state.boxMirroring = (m_bidiState & 8) != 0;
    return state;
}

void BufferLine::setRenderMode(RenderLineMode mode)
{
    if (m_renderMode == mode)
        return;
    m_renderMode = mode;
    ++m_generation;
}

void BufferLine::resize(int cols, const CharData& cell)
{
    cols = std::clamp(cols, 0, MaxSize);
    if (cols == m_size)
        return;
    ++m_generation;
    const int before = m_size;
    if (cols < before) {
        splitWide(cols);
        m_size = std::uint16_t(cols);
        m_live = std::min(m_live, m_size);
        marksClampTo(cols);
        return;
    }
    if (isBlank(cell) && cell.attribute.bg == m_blankBackground) {
        m_size = std::uint16_t(cols);
        return;
    }
    materialize(before);
    m_size = std::uint16_t(cols);
    fill(cell, before, cols - before);
}

void BufferLine::store(const Attribute& attribute)
{
    reserve(m_size);
    std::fill(m_cells, m_cells + m_size, CharData::null(attribute));
    m_live = m_size;
}

void BufferLine::fill(const CharData& cell)
{
    fill(cell, 0, m_size);
}

void BufferLine::fill(const CharData& cell, int column, int length)
{
    const int start = std::clamp<int>(column, 0, m_size);
    const int end = int(std::clamp<std::int64_t>(std::int64_t(column) + length, start, m_size));
    ++m_generation;
    if (start == end)
        return;
    splitWide(start);
    splitWide(end);
    const bool reachesBlanks = end == m_size || (end >= m_live && cell == blank());
    if (reachesBlanks && isBlank(cell)) {
        setBlanks(start, cell);
        return;
    }
    materialize(end);
    std::fill(m_cells + start, m_cells + end, cell);
    if (cell.width == 2) {
        CharData half = cell;
        makeBlank(half);
        if ((end - start) % 2 != 0)
            m_cells[end - 1] = half;
        half.width = 0;
        for (int i = start + 1; i < end; i += 2)
            m_cells[i] = half;
    }
}

void BufferLine::replaceCells(int start, int end, const CharData& cell)
{
    fill(cell, start, end - start);
}

void BufferLine::insertCells(int column, int n, int rightMargin, const CharData& cell)
{
    column = std::max(column, 0);
    const int limit = std::min(rightMargin, m_size - 1) + 1;
    n = std::min(n, limit - column);
    if (n <= 0)
        return;
    ++m_generation;
    splitWide(column);
    splitWide(limit - n);
    splitWide(limit);
    // Behind the stored cells blanks move over blanks.
    const int end = std::min(limit, std::max<int>(m_live, column) + n);
    materialize(end);
    moveCells(m_cells + column + n, m_cells + column, end - column - n);
    std::fill(m_cells + column, m_cells + column + n, cell);
    marksShift(column, n, limit - 1);
}

void BufferLine::deleteCells(int column, int n, int rightMargin, const CharData& cell)
{
    column = std::max(column, 0);
    const int limit = std::min(rightMargin, m_size - 1) + 1;
    n = std::min(n, limit - column);
    if (n <= 0)
        return;
    ++m_generation;
    splitWide(column);
    splitWide(column + n);
    splitWide(limit);
    if (m_live <= limit && cell == blank()) {
        if (m_live > column + n)
            moveCells(m_cells + column, m_cells + column + n, m_live - column - n);
        m_live = std::uint16_t(std::max(std::min<int>(m_live, column), m_live - n));
    } else {
        materialize(limit);
        moveCells(m_cells + column, m_cells + column + n, limit - column - n);
        std::fill(m_cells + limit - n, m_cells + limit, cell);
    }
    marksShift(column, -n, limit - 1);
}

void BufferLine::copyFrom(const BufferLine& line)
{
    if (&line == this)
        return;
    m_bidiState = line.m_bidiState;
    m_renderMode = line.m_renderMode;
    m_isWrapped = line.m_isWrapped;
    m_continuesEarly = line.m_continuesEarly;
    fill(CharData{});
    copyFrom(line, 0, 0, line.m_size);
    destroySemanticState();
    if (line.m_extra) {
        extra().marks = line.m_extra->marks;
        extra().hardContinuationGroup = line.m_extra->hardContinuationGroup;
        marksClampTo(m_size);
        dropEmptyExtra();
    }
}

void BufferLine::copyFrom(const BufferLine& line, int sourceColumn, int column, int length)
{
    if (sourceColumn < 0 || column < 0)
        return;
    length = std::min({length, line.m_size - sourceColumn, m_size - column});
    if (length <= 0)
        return;
    const int stored = std::clamp(line.m_live - sourceColumn, 0, length);
    const CharData rest = line.blank();
    std::vector<CharData> own; // Of the same row, the source must outlive the mending.
    if (stored > 0) {
        const CharData* from = line.m_cells + sourceColumn;
        if (&line == this) {
            own.assign(from, from + stored);
            from = own.data();
        }
        CharData* const to = overwrite(column, stored);
        copyCells(to, from, stored);
        if (to[0].width == 0)
            makeBlank(to[0]);
        if (to[stored - 1].width == 2)
            makeBlank(to[stored - 1]);
    }
    fill(rest, column + stored, length - stored);
}

int BufferLine::getTrimmedLength() const
{
    for (int i = m_live; i > 0; --i) {
        if (m_cells[i - 1].code != 0)
            return i - 1 + m_cells[i - 1].width;
    }
    return 0;
}

bool BufferLine::hasAnyContent() const
{
    if (m_live < m_size && m_blankBackground != CellColor{})
        return true;
    const auto cells = live();
    return std::any_of(cells.begin(), cells.end(),
                       [](const CharData& cell) { return !cell.isNull(); });
}

std::string BufferLine::translateToString(const GraphemeTable& graphemes,
                                          const TextRange& range) const
{
    int end = range.endColumn < 0 ? m_size : std::min<int>(range.endColumn, m_size);
    if (range.trimRight)
        end = std::min(end, getTrimmedLength());
    std::string text;
    for (int i = std::max(0, range.startColumn); i < end; ++i) {
        if (i >= m_live) {
            text.append(std::size_t(end - i), ' ');
            break;
        }
        const CharData& cell = m_cells[i];
        if (cell.width != 0 || !range.skipNullCellsFollowingWide)
            graphemes.appendText(text, cell.code);
    }
    return text;
}

std::string BufferLine::translateToString(const GraphemeTable& graphemes) const
{
    return translateToString(graphemes, TextRange{});
}

std::size_t BufferLine::memory() const
{
    std::size_t bytes = sizeof(*this) + m_capacity * sizeof(CharData);
    if (m_extra) {
        bytes += sizeof(Extra) + m_extra->marks.capacity() * sizeof(SemanticMark) +
                 m_extra->images.capacity() * sizeof(m_extra->images[0]);
    }
    return bytes;
}

} // namespace Kovalt
