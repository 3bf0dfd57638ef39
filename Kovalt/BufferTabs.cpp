// Tab stops.

#include "Kovalt/Buffer.h"

#include <algorithm>

namespace Kovalt {

namespace {

bool isSet(const std::vector<bool>& stops, int column)
{
    return column >= 0 && column < int(stops.size()) && stops[std::size_t(column)];
}

} // namespace

void Buffer::setupTabStops(int index, int tabStopWidth)
{
    tabStops.resize(std::size_t(m_cols), false);
    const int first = std::clamp(index, 0, m_cols);
    if (index == -1)
        tabClearAll();
    if (tabStopWidth <= 0)
        return;
    for (int column = isSet(tabStops, first) ? first : previousTabStop(first); column < m_cols;
         column += std::min(tabStopWidth, m_cols)) {
        if (column >= first)
            tabStops[std::size_t(column)] = true;
    }
}

int Buffer::nextTabStop(int index, bool inMargins) const
{
    const int from = index == -1 ? x : index;
    const int last = m_cols - 1;
    const int limit = inMargins && from <= marginRight ? std::clamp(marginRight, 0, last) : last;
    for (int column = std::max(0, from + 1); column < limit; ++column) {
        if (isSet(tabStops, column))
            return column;
    }
    return limit;
}

int Buffer::previousTabStop(int index) const
{
    for (int column = std::min(index == -1 ? x : index, m_cols) - 1; column > 0; --column) {
        if (isSet(tabStops, column))
            return column;
    }
    return 0;
}

void Buffer::tabSet(int column)
{
    if (column >= 0 && column < int(tabStops.size()))
        tabStops[std::size_t(column)] = true;
}

void Buffer::tabClear(int column)
{
    if (column >= 0 && column < int(tabStops.size()))
        tabStops[std::size_t(column)] = false;
}

void Buffer::tabClearAll()
{
    std::fill(tabStops.begin(), tabStops.end(), false);
}

} // namespace Kovalt
