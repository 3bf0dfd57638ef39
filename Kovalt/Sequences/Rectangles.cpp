// Rectangles that are copied, filled and erased.

#include "Kovalt/Terminal.h"
#include "Kovalt/UnicodeUtil.h"

#include <algorithm>
#include <array>

namespace Kovalt {

namespace {

std::int32_t parameterAt(std::span<const std::int32_t> parameters, std::size_t index)
{
    return index < parameters.size() ? parameters[index] : 0;
}

/// The scalar that a parameter names, a blank if it names nothing that can be seen.
char32_t visibleScalar(std::int32_t value)
{
    const auto scalar = static_cast<char32_t>(value);
    const bool isSurrogate = scalar >= 0xD800 && scalar <= 0xDFFF;
    return isSurrogate || UnicodeUtil::computeColumnWidth(scalar) <= 0 ? U' ' : scalar;
}

} // namespace

std::optional<Terminal::Rectangle>
Terminal::getRectangleFromRequest(std::span<const std::int32_t> parameters) const
{
    const int top = std::max(1, int(parameterAt(parameters, 0)));
    const int left = std::max(1, int(parameterAt(parameters, 1)));
    const int bottom = parameterAt(parameters, 2);
    const int right = parameterAt(parameters, 3);
    const int rowOffset = m_modes.originMode ? m_buffer->scrollTop : 0;
    const int columnOffset = m_modes.originMode ? leftMargin() : 0;
    Rectangle area;
    area.top = top - 1 + rowOffset;
    area.left = left - 1 + columnOffset;
    area.bottom = std::min(bottom == 0 ? m_rows - 1 : bottom - 1 + rowOffset, m_rows - 1);
    area.right = std::min(right == 0 ? m_cols - 1 : right - 1 + columnOffset, m_cols - 1);
    if (area.top > area.bottom || area.left > area.right)
        return std::nullopt;
    return area;
}

void Terminal::csiCopyRectangularArea(const CsiSequence& sequence)
{
    const auto source = getRectangleFromRequest(sequence.parameters);
    // The page of the source stands between the rectangle and the place.
    const auto parameters = sequence.parameters;
    const std::array<std::int32_t, 2> corner = {parameterAt(parameters, 5),
                                                parameterAt(parameters, 6)};
    const auto place = getRectangleFromRequest(corner);
    if (!source || !place)
        return;
    const int width = std::min(source->right - source->left, m_cols - 1 - place->left) + 1;
    const int height = std::min(source->bottom - source->top, m_rows - 1 - place->top) + 1;
    const bool goesDown = place->top > source->top;
    for (int i = 0; i < height; ++i) {
        const int row = goesDown ? height - 1 - i : i;
        m_buffer->screenLine(place->top + row)
            .copyFrom(m_buffer->screenLine(source->top + row), source->left, place->left, width);
    }
    updateRows(place->top, place->top + height - 1);
}

void Terminal::fillRectangle(const Rectangle& area, const CharData& cell)
{
    for (int row = area.top; row <= area.bottom; ++row)
        m_buffer->screenLine(row).fill(cell, area.left, area.right - area.left + 1);
    updateRows(area.top, area.bottom);
}

void Terminal::cmdFillRectangle(const CsiSequence& sequence)
{
    const auto area = getRectangleFromRequest(sequence.parameters.subspan(1));
    if (!area)
        return;
    const char32_t scalar = visibleScalar(sequence.parameters[0]);
    CharData cell;
    cell.code = std::int32_t(scalar);
    cell.width = std::int8_t(UnicodeUtil::computeColumnWidth(scalar));
    cell.attribute = m_curAttr;
    fillRectangle(*area, cell);
}

void Terminal::cmdEraseRectangle(const CsiSequence& sequence)
{
    if (const auto area = getRectangleFromRequest(sequence.parameters))
        fillRectangle(*area, erasedCell());
}

/// The characters go, their looks stay.
void Terminal::cmdSelectiveEraseRectangularArea(const CsiSequence& sequence)
{
    const auto area = getRectangleFromRequest(sequence.parameters);
    if (!area)
        return;
    for (int row = area->top; row <= area->bottom; ++row) {
        BufferLine& line = m_buffer->screenLine(row);
        for (int column = area->left; column <= area->right; ++column) {
            const Attribute looks = line[column].attribute;
            if ((looks.guard & CharacterGuard::Selective) == 0)
                line.set(column, CharData::null(looks));
        }
    }
    updateRows(area->top, area->bottom);
}

} // namespace Kovalt
