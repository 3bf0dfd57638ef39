// How a search goes through the buffer and follows what changes in it.

#include "Kovalt/LogicalLine.h"
#include "Kovalt/Search/SearchService.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <limits>
#include <string_view>

namespace Kovalt {

namespace {

/// Cells of a long logical line that are searched at once; as many behind them may belong to a
/// match, and an eighth of them before may be looked at.
constexpr int PartCells = 2048;
/// What a line, or a part of one, may take.
constexpr std::chrono::milliseconds LongestSearch{20};

} // namespace

int SearchService::partRows() const
{
    return std::max(1, PartCells / m_buffer->cols());
}

void SearchService::restart()
{
    m_matches.clear();
    m_stamps.clear();
    m_givenUp.clear();
    m_isCapped = false;
    m_wasComplete = false;
    m_first = m_next = m_buffer->linesTop;
    m_numbering = m_buffer->numbering();
    m_cols = m_buffer->cols();
    m_rows = m_buffer->rows();
    m_screenTop = m_buffer->linesTop + m_buffer->yBase;
}

void SearchService::dropEvicted()
{
    const std::int64_t top = m_buffer->linesTop;
    for (; m_first < top && !m_stamps.empty(); ++m_first)
        m_stamps.pop_front();
    m_first = std::max(m_first, top);
    m_next = std::max(m_next, top);
    while (!m_matches.empty() && m_matches.front().begin.row < top)
        m_matches.pop_front();
    m_givenUp.erase(m_givenUp.begin(), m_givenUp.lower_bound(top));
}

void SearchService::dropFrom(std::int64_t row)
{
    if (row >= m_next)
        return;
    m_next = row;
    while (!m_matches.empty() && m_matches.back().begin.row >= row)
        m_matches.pop_back();
    m_givenUp.erase(m_givenUp.lower_bound(row), m_givenUp.end());
}

SearchService::RowStamp SearchService::stampOf(int ringRow)
{
    m_text->assign(ringRow, ringRow);
    return {std::hash<std::string_view>()(m_text->text()),
            LogicalLine::continues(*m_buffer, ringRow)};
}

bool SearchService::stillShows(std::int64_t row, const RowStamp& stamp)
{
    const int ringRow = int(row - m_buffer->linesTop);
    // The oldest row had others before it, which it no longer continues.
    if (LogicalLine::continues(*m_buffer, ringRow) != (stamp.continues && ringRow > 0))
        return false;
    return !stamp.text || stampOf(ringRow).text == stamp.text;
}

/// Only rows that were on the screen can have changed. They are compared by what they show: a
/// generation tells that a row was written, not which row stands there after others have moved.
std::optional<std::int64_t> SearchService::firstChangedRow()
{
    const std::int64_t top = m_buffer->linesTop + m_buffer->yBase;
    const int grown = std::max(0, m_buffer->rows() - m_rows);
    const std::int64_t from = std::max(std::min(top, m_screenTop - grown), m_first);
    const std::int64_t end = m_first + std::int64_t(m_stamps.size());
    for (std::int64_t row = from; row < end; ++row) {
        if (!stillShows(row, m_stamps[std::size_t(row - m_first)]))
            return row;
    }
    return std::nullopt;
}

/// The first row whose matches may depend on this one, which has changed.
std::int64_t SearchService::rescanStart(std::int64_t row) const
{
    const bool continued = m_stamps[std::size_t(row - m_first)].continues;
    int ringRow = int(row - m_buffer->linesTop);
    if (ringRow > 0 && (continued || LogicalLine::continues(*m_buffer, ringRow)))
        --ringRow;
    else
        return row;
    // Matches begin at most one part before what they look at.
    const int part = partRows();
    const int nearest = ringRow - part;
    while (LogicalLine::continues(*m_buffer, ringRow)) {
        const bool beginsPart = (ringRow + m_buffer->linesTop) % part == 0;
        if (ringRow <= nearest && beginsPart)
            break;
        --ringRow;
    }
    return std::max(ringRow + m_buffer->linesTop, m_first);
}

void SearchService::sync()
{
    if (m_numbering != m_buffer->numbering() || m_cols != m_buffer->cols()) {
        // The same lines are cut at other places, so they have the same matches.
        const auto index = currentIndex();
        if (index && m_wasComplete && m_cols != m_buffer->cols())
            m_currentFromEnd = m_matches.size() - *index;
        m_current.reset();
        m_origin = {m_buffer->linesTop, 0};
        restart();
        return;
    }
    dropEvicted();
    if (const auto changed = firstChangedRow()) {
        dropFrom(rescanStart(*changed));
        // What is kept has seen nothing from there on.
        for (auto at = std::size_t(*changed - m_first); at < m_stamps.size(); ++at)
            m_stamps[at] = stampOf(int(std::int64_t(at) + m_first - m_buffer->linesTop));
    }
    dropFrom(endRow());
    m_rows = m_buffer->rows();
    m_screenTop = m_buffer->linesTop + m_buffer->yBase;
}

bool SearchService::isComplete() const
{
    return !m_pattern || m_next >= endRow();
}

bool SearchService::step(int rows, const std::function<bool()>& isSpent)
{
    sync();
    while (!isComplete()) {
        rows -= searchUnit();
        if (rows <= 0 || (isSpent && isSpent()))
            break;
    }
    m_wasComplete = isComplete();
    if (m_wasComplete)
        restoreCurrent();
    return !m_wasComplete;
}

SearchService::Unit SearchService::unitAt(int ringRow) const
{
    const int part = partRows();
    const auto continues = [&](int row) { return LogicalLine::continues(*m_buffer, row); };
    Unit unit{ringRow, ringRow, ringRow, ringRow};
    while (continues(unit.last + 1) && unit.last - unit.first < part)
        ++unit.last;
    // Parts of a line begin at rows that are fixed by their numbers, so that they are the same
    // whenever the line is searched again.
    const bool isWhole = !continues(unit.first) && unit.last - unit.first < part;
    if (!isWhole) {
        const int inPart = int((ringRow + m_buffer->linesTop) % part);
        unit.last = std::min(unit.last, ringRow + part - 1 - inPart);
    }
    const int before = std::max(1, part / 8);
    while (continues(unit.textFirst) && ringRow - unit.textFirst < before)
        --unit.textFirst;
    unit.textLast = unit.last;
    while (continues(unit.textLast + 1) && unit.textLast - unit.last < part)
        ++unit.textLast;
    return unit;
}

/// Searches the next logical line, or the next part of it; returns how many rows it had.
int SearchService::searchUnit()
{
    const Unit unit = unitAt(int(m_next - m_buffer->linesTop));
    m_text->assign(unit.textFirst, unit.textLast);
    // Also of the rows behind it that it looks at: they may change before they are searched.
    m_stamps.resize(std::size_t(m_next - m_first));
    for (int row = unit.first; row <= unit.textLast; ++row)
        m_stamps.push_back({std::hash<std::string_view>()(m_text->rowText(row)),
                            LogicalLine::continues(*m_buffer, row)});
    m_stamps.push_back({std::nullopt, LogicalLine::continues(*m_buffer, unit.textLast + 1)});
    findIn(unit);
    m_next += unit.last - unit.first + 1;
    return unit.textLast - unit.textFirst + 1;
}

void SearchService::findIn(const Unit& unit)
{
    const SearchPattern::Ends ends{!LogicalLine::continues(*m_buffer, unit.textFirst),
                                   !LogicalLine::continues(*m_buffer, unit.textLast + 1)};
    // A match of the part before may have come this far.
    std::size_t from = m_text->startOf(unit.first);
    if (!m_matches.empty() && m_matches.back().end.row >= m_next)
        from = std::max(from, m_text->byteAt(m_matches.back().end));
    const std::size_t end = m_text->startOf(unit.last + 1);
    SearchBudget budget(LongestSearch);
    while (from < end) {
        const auto found = m_pattern->find(m_text->text(), from, ends, &budget);
        if (found.outcome == SearchPattern::Outcome::GaveUp)
            m_givenUp.insert(m_next);
        if (found.outcome != SearchPattern::Outcome::Found || found.begin >= end)
            return;
        const auto first = m_text->characterAt(found.begin);
        const auto last = m_text->characterAt(found.end - 1);
        keep({first.begin, last.end});
        // Two matches in one character would be one in the other for those who see cells.
        from = last.endByte;
    }
}

void SearchService::keep(const TextRange& match)
{
    if (m_matches.size() == MostMatches) {
        m_matches.pop_front();
        m_isCapped = true;
    }
    m_matches.push_back(match);
}

void SearchService::restoreCurrent()
{
    if (!m_currentFromEnd)
        return;
    const std::size_t fromEnd = *m_currentFromEnd;
    m_currentFromEnd.reset();
    if (fromEnd <= m_matches.size())
        choose(m_matches.size() - fromEnd);
}

} // namespace Kovalt
