#include "Kovalt/LineReflow.h"

#include <algorithm>
#include <cstring>

namespace Kovalt {

LineReflow::LineReflow(int oldCols, int newCols, int cursorRow)
    : m_oldCols(oldCols)
    , m_newCols(newCols)
    , m_cursorRow(std::size_t(std::max(0, cursorRow)))
    , m_row(std::size_t(newCols))
{
}

LineReflow::Lines LineReflow::run(Lines lines, std::size_t limit, std::span<Place> places)
{
    m_old = std::move(lines);
    m_limit = limit;
    m_places = places;
    m_fromEnd.assign(places.size(), Place::Gone);
    m_new.reserve(std::min(limit, m_old.size() + m_old.size() / 2));
    for (std::size_t end = m_old.size(); end > m_oldest && m_new.size() < m_limit;) {
        std::size_t first = end - 1;
        while (first > m_oldest && m_old[first] && m_old[first]->isWrapped())
            --first;
        reflowGroup(first, end - 1);
        end = first;
    }
    if (m_new.size() > m_limit)
        m_new.resize(m_limit);
    std::reverse(m_new.begin(), m_new.end());
    for (std::size_t i = 0; i < places.size(); ++i) {
        const bool isKept = m_fromEnd[i] >= 0 && std::size_t(m_fromEnd[i]) < m_new.size();
        places[i].row = isKept ? int(m_new.size()) - 1 - m_fromEnd[i] : Place::Gone;
    }
    return std::move(m_new);
}

void LineReflow::reflowGroup(std::size_t first, std::size_t last)
{
    const bool isWidening = m_newCols > m_oldCols;
    const bool holdsCursor = first <= m_cursorRow && m_cursorRow <= last;
    const BufferLine* const line = m_old[first].get();
    const bool fits = first == last && (!line || line->getTrimmedLength() <= m_newCols);
    // What the shell has under its cursor it draws again itself, at the places that it knows.
    if (fits || (isWidening && holdsCursor))
        keepGroup(first, last);
    else
        cutGroup(first, last);
}

void LineReflow::keepGroup(std::size_t first, std::size_t last)
{
    for (std::size_t row = last + 1; row-- > first;) {
        for (std::size_t i = 0; i < m_places.size(); ++i) {
            if (m_places[i].row != int(row))
                continue;
            m_fromEnd[i] = int(m_new.size());
            if (m_newCols < m_oldCols)
                m_places[i].col = std::min(m_places[i].col, m_newCols - 1);
        }
        if (m_old[row])
            m_old[row]->resize(m_newCols);
        m_new.push_back(std::move(m_old[row]));
    }
}

void LineReflow::measure(std::size_t first, std::size_t last)
{
    m_lengths.clear();
    m_offsets.clear();
    int offset = 0;
    for (std::size_t row = first; row <= last; ++row) {
        const BufferLine& line = *m_old[row];
        int length = m_oldCols;
        if (row == last) {
            length = line.getTrimmedLength();
        } else if (!line.hasContent(m_oldCols - 1) && m_old[row + 1]->getWidth(0) == 2) {
            // The wide character did not fit and wrapped early.
            length = m_oldCols - 1;
        }
        m_lengths.push_back(length);
        m_offsets.push_back(offset);
        offset += length;
    }
    m_offsets.push_back(offset);
}

int LineReflow::cellWidthAt(std::size_t first, std::size_t row, int col) const
{
    while (row + 1 < m_lengths.size() && col >= m_lengths[row]) {
        col -= m_lengths[row];
        ++row;
    }
    return m_old[first + row]->getWidth(col);
}

void LineReflow::cutGroup(std::size_t first, std::size_t last)
{
    if (!m_old[first]) // Only the first can be untouched, since the others are marked as wrapped.
        m_old[first] = std::make_unique<BufferLine>(m_oldCols);
    measure(first, last);
    const int total = m_offsets.back();
    m_cuts.clear();
    Cut cut{0, 0, 0, 0};
    do {
        const int remaining = total - cut.offset;
        cut.length = std::min(remaining, m_newCols);
        const bool cutsWide =
            remaining > m_newCols && cellWidthAt(first, cut.row, cut.col + m_newCols - 1) == 2;
        if (cutsWide && m_newCols > 1)
            --cut.length;
        m_cuts.push_back(cut);
        cut.offset += cut.length;
        cut.col += cut.length;
        while (cut.row + 1 < m_lengths.size() && cut.col >= m_lengths[cut.row])
            cut.col -= m_lengths[cut.row++];
    } while (cut.offset < total);

    followPlaces(first, last);
    const std::size_t had = last - first + 1;
    m_extras.clear();
    for (std::size_t row = 0; row < had; ++row) {
        if (m_old[first + row]->m_extra)
            m_extras.emplace_back(row, std::move(m_old[first + row]->m_extra));
    }

    // A row may be written as soon as no other needs what it held: narrower rows take their cells
    // from above, wider ones from below.
    const std::size_t begin = m_new.size();
    const std::size_t count = m_cuts.size();
    m_new.resize(begin + count);
    const auto place = [&](std::size_t index) {
        auto& slot = m_new[begin + count - 1 - index];
        if (index >= had) {
            slot = takeRow(*m_old[first], first);
            writeRow(*slot, first, index);
        } else {
            writeRow(*m_old[first + index], first, index);
        }
    };
    if (m_newCols < m_oldCols) {
        for (std::size_t index = count; index-- > 0;)
            place(index);
    } else {
        for (std::size_t index = 0; index < count; ++index)
            place(index);
    }
    for (std::size_t index = 0; index < std::min(count, had); ++index)
        m_new[begin + count - 1 - index] = std::move(m_old[first + index]);
    for (std::size_t row = count; row < had; ++row)
        m_old[first + row].reset();
    moveExtras(begin, count);
}

void LineReflow::gather(std::size_t first, const Cut& cut)
{
    std::size_t row = cut.row;
    int col = cut.col;
    for (int done = 0; done < cut.length;) {
        const BufferLine& line = *m_old[first + row];
        const int length = std::min(cut.length - done, m_lengths[row] - col);
        const int stored = std::clamp(int(line.m_live) - col, 0, length);
        if (stored > 0)
            std::copy_n(line.m_cells + col, stored, m_row.begin() + done);
        std::fill_n(m_row.begin() + done + stored, length - stored, line.blank());
        done += length;
        col = 0;
        ++row;
    }
}

void LineReflow::writeRow(BufferLine& line, std::size_t first, std::size_t index)
{
    const Cut& cut = m_cuts[index];
    ++line.m_generation;
    const bool isInPlace = index == 0 && m_newCols < m_oldCols && line.m_live >= cut.length;
    if (!isInPlace) {
        gather(first, cut);
        line.m_live = 0;
    }
    line.m_size = std::uint16_t(m_newCols);
    if (!isInPlace) {
        line.reserve(cut.length);
        if (cut.length > 0)
            std::copy_n(m_row.begin(), cut.length, line.m_cells);
    }
    line.m_live = std::uint16_t(cut.length);
    line.m_blankBackground = {};
    if (index > 0)
        line.m_isWrapped = true;
    if (cut.length > 0) {
        // Only where a single column is left are wide characters cut at all.
        if (line.m_cells[cut.length - 1].width == 2)
            line.m_cells[cut.length - 1] = CharData::null(line.m_cells[0].attribute);
        if (line.m_cells[0].width == 0)
            line.m_cells[0] = CharData::null(line.m_cells[0].attribute);
    }
}

std::unique_ptr<BufferLine> LineReflow::takeRow(const BufferLine& like, std::size_t first)
{
    std::unique_ptr<BufferLine> row;
    // As many rows are there as may stay: each new one costs the oldest.
    const bool isFull = m_new.size() + (first - m_oldest) >= m_limit;
    if (isFull && m_oldest < first)
        row = std::move(m_old[m_oldest++]);
    if (!row)
        row = std::make_unique<BufferLine>(m_newCols);
    row->clear({});
    row->m_extra.reset();
    row->m_isWrapped = true;
    row->m_bidiState = like.m_bidiState;
    row->m_renderMode = like.m_renderMode;
    return row;
}

std::size_t LineReflow::cutOf(int offset) const
{
    const auto after =
        std::upper_bound(m_cuts.begin(), m_cuts.end(), offset,
                         [](int wanted, const Cut& cut) { return wanted < cut.offset; });
    return std::size_t(after - m_cuts.begin()) - 1;
}

void LineReflow::followPlaces(std::size_t first, std::size_t last)
{
    for (std::size_t i = 0; i < m_places.size(); ++i) {
        Place& place = m_places[i];
        if (place.row < int(first) || place.row > int(last))
            continue;
        const std::size_t row = std::size_t(place.row) - first;
        const bool isLast = row + 1 == m_lengths.size();
        const int col = isLast ? place.col : std::min(place.col, m_lengths[row]);
        const int offset = m_offsets[row] + col;
        const std::size_t index = cutOf(offset);
        const Cut& cut = m_cuts[index];
        m_fromEnd[i] = int(m_new.size() + m_cuts.size() - 1 - index);
        const int limit = cut.length == m_newCols ? m_newCols : m_newCols - 1;
        place.col = std::min(offset - cut.offset, limit);
    }
}

void LineReflow::moveExtras(std::size_t begin, std::size_t count)
{
    for (const auto& [row, extra] : m_extras) {
        const auto lineOf = [&](int offset) -> BufferLine& {
            return *m_new[begin + count - 1 - cutOf(offset)];
        };
        const int start = std::min(m_offsets[row], std::max(0, m_offsets.back() - 1));
        for (SemanticMark mark : extra->marks) {
            const int offset = m_offsets[row] + std::min(mark.column, m_lengths[row]);
            mark.column = std::min(offset - m_cuts[cutOf(offset)].offset, m_newCols - 1);
            lineOf(offset).extra().marks.push_back(mark);
        }
        for (const auto& image : extra->images)
            lineOf(start).extra().images.push_back(image);
        if (extra->hardContinuationGroup)
            lineOf(start).extra().hardContinuationGroup = extra->hardContinuationGroup;
    }
}

} // namespace Kovalt
