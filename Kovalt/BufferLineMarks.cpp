// What few rows have: marks of a shell's dialogue and images.

#include "Kovalt/BufferLine.h"

#include <algorithm>

namespace Kovalt {

BufferLine::Extra& BufferLine::extra()
{
    if (!m_extra)
        m_extra = std::make_unique<Extra>();
    return *m_extra;
}

void BufferLine::dropEmptyExtra()
{
    if (m_extra && m_extra->marks.empty() && m_extra->images.empty() &&
        !m_extra->hardContinuationGroup)
        m_extra.reset();
}

std::span<const SemanticMark> BufferLine::semanticMarks() const
{
    return m_extra ? std::span<const SemanticMark>(m_extra->marks)
                   : std::span<const SemanticMark>();
}

void BufferLine::setSemanticMark(const SemanticMark& mark)
{
    ++m_generation;
    auto& marks = extra().marks;
    const auto same = std::find_if(marks.begin(), marks.end(), [&](const SemanticMark& other) {
        return other.kind == mark.kind && other.column == mark.column;
    });
    if (same != marks.end())
        *same = mark;
    else
        marks.push_back(mark);
}

void BufferLine::removeSemanticMarks()
{
    if (!m_extra)
        return;
    ++m_generation;
    m_extra->marks.clear();
    dropEmptyExtra();
}

std::optional<std::uint64_t> BufferLine::semanticHardContinuationGroup() const
{
    return m_extra ? m_extra->hardContinuationGroup : std::nullopt;
}

void BufferLine::setSemanticHardContinuationGroup(std::optional<std::uint64_t> group)
{
    if (group == semanticHardContinuationGroup())
        return;
    ++m_generation;
    extra().hardContinuationGroup = group;
    dropEmptyExtra();
}

void BufferLine::destroySemanticState()
{
    if (!m_extra)
        return;
    removeSemanticMarks();
    setSemanticHardContinuationGroup(std::nullopt);
}

void BufferLine::marksShift(int column, int by, int rightMargin)
{
    if (!m_extra || by == 0)
        return;
    ++m_generation;
    auto& marks = m_extra->marks;
    const auto isInside = [&](int place) { return place >= column && place <= rightMargin; };
    std::erase_if(marks, [&](SemanticMark& mark) {
        if (!isInside(mark.column))
            return false;
        mark.column += by;
        return !isInside(mark.column);
    });
    dropEmptyExtra();
}

void BufferLine::marksClampTo(int width)
{
    if (!m_extra)
        return;
    for (SemanticMark& mark : m_extra->marks)
        mark.column = std::clamp(mark.column, 0, std::max(0, width - 1));
}

std::span<const std::shared_ptr<TerminalImage>> BufferLine::images() const
{
    return m_extra ? std::span<const std::shared_ptr<TerminalImage>>(m_extra->images)
                   : std::span<const std::shared_ptr<TerminalImage>>();
}

void BufferLine::attach(std::shared_ptr<TerminalImage> image)
{
    ++m_generation;
    extra().images.push_back(std::move(image));
}

void BufferLine::removeImages()
{
    if (!hasImages())
        return;
    ++m_generation;
    m_extra->images.clear();
    dropEmptyExtra();
}

} // namespace Kovalt
