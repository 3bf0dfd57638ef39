// Margins: the rows and columns that scrolling and editing keep to.

#include "Kovalt/Terminal.h"

#include <algorithm>
#include <optional>

namespace Kovalt {

namespace {

/// The first and the last of `count` rows or columns that two parameters mean; none if they are
/// fewer than two.
std::optional<std::pair<int, int>> regionOf(std::span<const std::int32_t> parameters, int count)
{
    const int first = std::max(1, int(parameters[0]));
    const int wanted = parameters.size() > 1 ? parameters[1] : 0;
    const int last = wanted == 0 ? count : std::min(wanted, count);
    if (last - first < 1)
        return std::nullopt;
    return std::pair{first - 1, last - 1};
}

} // namespace

void Terminal::cmdSetScrollRegion(const CsiSequence& sequence)
{
    const auto region = regionOf(sequence.parameters, m_rows);
    if (!region)
        return;
    m_buffer->scrollTop = region->first;
    m_buffer->scrollBottom = region->second;
    setCursor(0, 0);
}

void Terminal::cmdSetMargins(const CsiSequence& sequence)
{
    const auto region = regionOf(sequence.parameters, m_cols);
    if (!region)
        return;
    m_buffer->marginLeft = region->first;
    m_buffer->marginRight = region->second;
    setCursor(0, 0);
}

} // namespace Kovalt
