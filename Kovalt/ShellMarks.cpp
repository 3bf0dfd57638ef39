#include "Kovalt/ShellMarks.h"

#include <algorithm>
#include <span>
#include <vector>

namespace Kovalt {

namespace {

using Kind = SemanticMark::Kind;

std::span<const SemanticMark> marksOf(const Buffer& buffer, int row)
{
    const BufferLine* const line = buffer.lines().peek(row);
    return line ? line->semanticMarks() : std::span<const SemanticMark>();
}

/// The marks of a row from left to right; of those in one column the older first.
std::vector<SemanticMark> sortedMarks(const Buffer& buffer, int row)
{
    const auto marks = marksOf(buffer, row);
    std::vector<SemanticMark> sorted(marks.begin(), marks.end());
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const SemanticMark& a, const SemanticMark& b) {
                         return a.group != b.group ? a.group < b.group : a.column < b.column;
                     });
    return sorted;
}

std::optional<SemanticPromptAnchor> firstPrompt(const Buffer& buffer, int row)
{
    for (const SemanticMark& mark : marksOf(buffer, row))
        if (mark.kind == Kind::Prompt && mark.prompt == SemanticPromptKind::Initial)
            return SemanticPromptAnchor{{mark.column, row}, mark.prompt};
    return std::nullopt;
}

/// The group of the last mark in the row or above it; 0 if there is none.
std::uint64_t groupAt(const Buffer& buffer, int row)
{
    for (; row >= 0; --row) {
        const auto marks = sortedMarks(buffer, row);
        if (!marks.empty())
            return marks.back().group;
    }
    return 0;
}

/// The row of the first mark of a group, looked for upwards.
int firstRowOf(const Buffer& buffer, std::uint64_t group, int row)
{
    int first = row;
    for (; row >= 0; --row) {
        const auto marks = marksOf(buffer, row);
        if (std::any_of(marks.begin(), marks.end(),
                        [&](const SemanticMark& mark) { return mark.group == group; }))
            first = row;
        else if (!marks.empty())
            break;
    }
    return first;
}

/// Whether the oldest text in the ring is a command's output. Then its mark has left the history.
bool beginsInOutput(const Buffer& buffer)
{
    for (int row = 0; row < buffer.lines().count(); ++row) {
        const BufferLine* const line = buffer.lines().peek(row);
        const auto cells = line ? line->live() : std::span<const CharData>();
        const auto text = std::find_if(cells.begin(), cells.end(),
                                       [](const CharData& cell) { return cell.code != 0; });
        if (text != cells.end())
            return text->semantic == SemanticCode::Output;
    }
    return false;
}

/// Whether the oldest mark in the ring, in this row, is the end of the group's command.
bool beginsWithEndOf(const Buffer& buffer, std::uint64_t group, int row)
{
    const auto marks = sortedMarks(buffer, row);
    return !marks.empty() && marks.front().kind == Kind::CommandEnd &&
           marks.front().group == group && groupAt(buffer, row - 1) == 0;
}

Position behindLastText(const Buffer& buffer)
{
    for (int row = buffer.lines().count() - 1; row >= 0; --row) {
        const BufferLine* const line = buffer.lines().peek(row);
        if (const int length = line ? line->getTrimmedLength() : 0; length > 0)
            return {length, row};
    }
    return {};
}

} // namespace

std::optional<SemanticPromptAnchor> ShellMarks::previousPrompt(const Buffer& buffer, int row)
{
    for (row = std::min(row, buffer.lines().count()) - 1; row >= 0; --row)
        if (const auto prompt = firstPrompt(buffer, row))
            return prompt;
    return std::nullopt;
}

std::optional<SemanticPromptAnchor> ShellMarks::nextPrompt(const Buffer& buffer, int row)
{
    for (row = std::max(row + 1, 0); row < buffer.lines().count(); ++row)
        if (const auto prompt = firstPrompt(buffer, row))
            return prompt;
    return std::nullopt;
}

std::optional<CellRange> ShellMarks::commandOutput(const Buffer& buffer, int row)
{
    row = std::min(row, buffer.lines().count() - 1);
    if (row < 0)
        return std::nullopt;
    const std::uint64_t group = groupAt(buffer, row);
    const int first = group == 0 ? 0 : firstRowOf(buffer, group, row);
    std::optional<Position> start;
    if ((group == 0 || beginsWithEndOf(buffer, group, first)) && beginsInOutput(buffer))
        start = Position{};
    else if (group == 0)
        return std::nullopt;
    for (int at = first; at < buffer.lines().count(); ++at) {
        for (const SemanticMark& mark : sortedMarks(buffer, at)) {
            const Position place{mark.column, at};
            if (mark.group == group && mark.kind == Kind::Output && !start)
                start = place;
            else if (start && (mark.group != group || mark.kind == Kind::CommandEnd))
                return CellRange{*start, std::max(*start, place)};
            else if (mark.group > group)
                return std::nullopt;
        }
    }
    if (!start)
        return std::nullopt;
    return CellRange{*start, std::max(*start, behindLastText(buffer))};
}

} // namespace Kovalt
