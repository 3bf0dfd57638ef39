#include "Views/Terminal/TerminalRows.h"

#include <QPainter>

#include <algorithm>
#include <utility>

namespace Bralto {

void TerminalRows::setSize(int cols, int rows, QSize cell)
{
    if (cols == m_cols && rows == m_rows && cell == m_cell)
        return;
    m_cols = cols;
    m_rows = rows;
    m_cell = cell;
    release();
}

void TerminalRows::forget()
{
    m_isForgotten = true;
}

void TerminalRows::release()
{
    m_picture = {};
    m_places.clear();
    m_isForgotten = true;
}

std::size_t TerminalRows::place(std::int64_t row) const
{
    const std::int64_t rest = row % m_rows;
    return std::size_t(rest < 0 ? rest + m_rows : rest);
}

const std::vector<int>& TerminalRows::refresh(TerminalPainter& painter, const Source& source)
{
    const Kovalt::Buffer& buffer = source.terminal.buffer();
    const QSize size(m_cols * m_cell.width(), m_rows * m_cell.height());
    if (m_picture.size() != size)
        m_picture = QImage(size, QImage::Format_RGB32);
    // Where rows were freed, a new one may have the address of an old one.
    const int count = buffer.lines().count();
    if (m_isForgotten || m_buffer != &buffer || m_numbering != buffer.numbering() ||
        count < m_count)
        m_places.assign(std::size_t(m_rows), {});
    const std::int64_t top = buffer.linesTop + buffer.yDisp;
    const bool showsAll = m_isForgotten || m_buffer != &buffer || top != m_top;
    m_isForgotten = false;
    m_buffer = &buffer;
    m_numbering = buffer.numbering();
    m_count = count;
    m_top = top;
    m_painted = 0;
    m_changed.clear();
    noteHits(source, buffer.yDisp);

    for (int row = 0; row < m_rows; ++row) {
        const Kovalt::BufferLine* const line = source.terminal.getLine(row);
        static const Kovalt::BufferLine nothing(1);
        Painted next{line, line ? line->generation() : 0, lookOf(source, row)};
        const std::size_t index = place(top + row);
        Painted& shown = m_places[index];
        const bool isAsShown = line && shown == next;
        if (!isAsShown) {
            painter.paintRow(m_picture, int(index) * m_cell.height(), line ? *line : nothing,
                             m_cols, next.look, source.terminal.graphemes());
            shown = std::move(next);
            ++m_painted;
        }
        if (!isAsShown || showsAll)
            m_changed.push_back(row);
    }
    return m_changed;
}

void TerminalRows::noteHits(const Source& source, int top)
{
    m_hits.clear();
    if (source.search && source.search->count() > 0)
        m_hits = source.search->highlights(top, top + m_rows - 1);
}

RowLook TerminalRows::lookOf(const Source& source, int row) const
{
    RowLook look;
    const int ringRow = source.terminal.buffer().yDisp + row;
    if (source.selection)
        look.selection = source.selection->columnsInRow(ringRow);
    if (source.link) {
        for (const auto& part : source.link->rowRanges) {
            if (part.row == ringRow)
                look.link = {part.first, part.last};
        }
    }
    auto hit = std::ranges::lower_bound(m_hits, ringRow, {}, &Kovalt::SearchHighlight::row);
    for (; hit != m_hits.end() && hit->row == ringRow; ++hit)
        look.hits.emplace_back(hit->columns, hit->isCurrent);
    if (row == source.cursorRow) {
        look.cursor = source.cursor;
        look.preedit = source.preedit;
    }
    return look;
}

void TerminalRows::draw(QPainter& painter, QPoint at) const
{
    if (m_picture.isNull())
        return;
    // The places form a ring: from the first row's place to the end, then from the beginning.
    const int first = int(place(m_top));
    const int height = m_cell.height();
    const int before = m_rows - first;
    painter.drawImage(at, m_picture, QRect(0, first * height, m_picture.width(), before * height));
    if (first > 0)
        painter.drawImage(at + QPoint(0, before * height), m_picture,
                          QRect(0, 0, m_picture.width(), first * height));
}

} // namespace Bralto
