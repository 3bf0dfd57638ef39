#include "Kovalt/Selection/SelectionService.h"

#include "Kovalt/LogicalLine.h"

#include <algorithm>
#include <utility>

namespace Kovalt {

SelectionService::SelectionService(const Buffer& buffer, const GraphemeTable& graphemes)
    : m_buffer(&buffer)
    , m_graphemes(graphemes)
{
}

void SelectionService::setBuffer(const Buffer& buffer)
{
    if (m_buffer == &buffer)
        return;
    m_buffer = &buffer;
    clear();
}

void SelectionService::change(const std::optional<Active>& next)
{
    if (m_active != next) {
        m_active = next;
        ++m_revision;
    }
    remember();
}

void SelectionService::start(SelectionMode mode, const SelectionPoint& point)
{
    const TextRange unit = SelectionRules::unitAt(*m_buffer, m_graphemes, mode, point);
    m_numbering = m_buffer->numbering();
    m_cols = m_buffer->cols();
    change(Active{{mode, unit}, unit});
}

void SelectionService::extend(const SelectionPoint& point)
{
    sync();
    if (!m_active)
        return;
    Active next = *m_active;
    const SelectionMode mode = next.selection.mode;
    const TextRange unit = SelectionRules::unitAt(*m_buffer, m_graphemes, mode, point);
    next.selection.range = SelectionRules::spanning(mode, next.fixed, unit);
    change(next);
}

void SelectionService::shiftExtend(const SelectionPoint& point)
{
    sync();
    if (!m_active) {
        start(SelectionMode::Character, point);
        return;
    }
    const TextPosition place = SelectionRules::borderAt(*m_buffer, point);
    m_active->fixed = SelectionRules::fixedPart(m_active->selection, place, m_buffer->cols());
    extend(point);
}

void SelectionService::selectAll()
{
    int last = m_buffer->lines().count() - 1;
    while (last >= 0 && LogicalLine::length(*m_buffer, last) == 0)
        --last;
    if (last < 0) {
        clear();
        return;
    }
    start(SelectionMode::Character, {{0, 0}, CellSide::Left});
    extend({{m_buffer->cols() - 1, last}, CellSide::Right});
}

void SelectionService::clear()
{
    change(std::nullopt);
}

std::optional<Selection> SelectionService::selection() const
{
    if (!m_active || m_active->selection.isEmpty())
        return std::nullopt;
    return m_active->selection;
}

ColumnRange SelectionService::columnsInRow(int ringRow) const
{
    const auto selected = selection();
    return selected
               ? SelectionRules::columnsInRow(*m_buffer, *selected, ringRow + m_buffer->linesTop)
               : ColumnRange{};
}

bool SelectionService::contains(Position cell) const
{
    const ColumnRange columns = columnsInRow(cell.row);
    return cell.col >= columns.begin && cell.col < columns.end;
}

std::string SelectionService::text() const
{
    const auto selected = selection();
    return selected ? SelectionRules::text(*m_buffer, m_graphemes, *selected) : std::string();
}

std::optional<SelectionService::Active> SelectionService::clipped(std::int64_t top,
                                                                  std::int64_t bottom) const
{
    const Selection& selection = m_active->selection;
    const auto range =
        SelectionRules::clipped(selection, selection.range, top, bottom, m_buffer->cols());
    if (!range)
        return std::nullopt;
    const auto fixed =
        SelectionRules::clipped(selection, m_active->fixed, top, bottom, m_buffer->cols());
    // The fixed end has gone: what remains is fixed at the side where it was.
    const TextPosition edge = m_active->fixed.begin.row < top ? range->begin : range->end;
    return Active{{selection.mode, *range}, fixed.value_or(TextRange{edge, edge})};
}

void SelectionService::sync()
{
    if (!m_active)
        return;
    if (m_numbering != m_buffer->numbering() || m_cols != m_buffer->cols() ||
        !std::all_of(m_shown.begin(), m_shown.end(),
                     [this](const ShownRow& shown) { return stillShows(shown); })) {
        clear();
        return;
    }
    change(clipped(m_buffer->linesTop, m_buffer->linesTop + m_buffer->lines().count() - 1));
}

void SelectionService::remember()
{
    m_shown.clear();
    if (!m_active || m_active->selection.isEmpty())
        return;
    const Selection& selection = m_active->selection;
    const std::int64_t top = m_buffer->linesTop + m_buffer->yBase;
    const std::int64_t end = m_buffer->linesTop + m_buffer->lines().count();
    for (std::int64_t row = std::max(selection.range.begin.row, top);
         row <= selection.range.end.row && row < end; ++row) {
        const ColumnRange columns = SelectionRules::columnsInRow(*m_buffer, selection, row);
        const int ringRow = int(row - m_buffer->linesTop);
        const int last = std::min(columns.end, LogicalLine::length(*m_buffer, ringRow));
        ShownRow shown{row, columns.begin, {}};
        for (int col = columns.begin; col < last; ++col)
            shown.codes.push_back(LogicalLine::cell(*m_buffer, {col, ringRow}).code);
        if (!shown.codes.empty())
            m_shown.push_back(std::move(shown));
    }
}

bool SelectionService::stillShows(const ShownRow& shown) const
{
    const std::int64_t ringRow = shown.row - m_buffer->linesTop;
    if (ringRow < 0) // It has left the history, and the selection is cut there.
        return true;
    for (std::size_t i = 0; i < shown.codes.size(); ++i) {
        const std::int32_t code = shown.codes[i];
        const Position cell{shown.column + int(i), int(ringRow)};
        // Text may still come to where nothing was.
        if (code != 0 && code != ' ' && LogicalLine::cell(*m_buffer, cell).code != code)
            return false;
    }
    return true;
}

void SelectionService::adjustForInPlaceScroll(const Buffer& buffer, int top, int bottom, int lines)
{
    // Within one feed a program may work on the other buffer and come back.
    if (!m_active || lines == 0 || &buffer != m_buffer)
        return;
    const std::int64_t first = top + m_buffer->linesTop;
    const std::int64_t last = bottom + m_buffer->linesTop;
    const Selection& selection = m_active->selection;
    if (selection.range.begin.row > last || selection.lastRow() < first)
        return;
    // Text of which one part moves and the other stays is no longer one.
    if (selection.range.begin.row < first || selection.lastRow() > last) {
        clear();
        return;
    }
    Active& active = *m_active;
    for (TextPosition* const place : {&active.selection.range.begin, &active.selection.range.end,
                                      &active.fixed.begin, &active.fixed.end})
        place->row += lines;
    for (ShownRow& shown : m_shown)
        shown.row += lines;
    std::erase_if(m_shown, [&](const ShownRow& s) { return s.row < first || s.row > last; });
    m_active = clipped(first, last);
    if (!m_active)
        m_shown.clear();
    ++m_revision;
}

} // namespace Kovalt
