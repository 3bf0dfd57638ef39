#pragma once

#include "Kovalt/Buffer.h"
#include "Kovalt/Position.h"
#include "Kovalt/SemanticMark.h"

#include <cstdint>
#include <optional>

namespace Kovalt {

/// Where a prompt begins.
struct SemanticPromptAnchor {
    Position position; ///< The row is one of the ring.
    SemanticPromptKind kind = SemanticPromptKind::Initial;

    bool operator==(const SemanticPromptAnchor&) const = default;
};

/// Cells in reading order, rows of the ring, without the cell at `end`.
struct CellRange {
    Position start;
    Position end;

    bool operator==(const CellRange&) const = default;
};

/// Finds its way through a shell's dialogue by the marks on the rows. Rows are those of the ring.
namespace ShellMarks {

/// The nearest first prompt above the row, or below it; none if there is none.
[[nodiscard]] std::optional<SemanticPromptAnchor> previousPrompt(const Buffer& buffer, int row);
[[nodiscard]] std::optional<SemanticPromptAnchor> nextPrompt(const Buffer& buffer, int row);

/// What the command printed to whose prompt, input or output the row belongs, as far as it is still
/// in the ring. It ends with the command, before the next prompt, or behind the last text. None
/// before the first prompt, and for a command that has no output yet.
[[nodiscard]] std::optional<CellRange> commandOutput(const Buffer& buffer, int row);

} // namespace ShellMarks

} // namespace Kovalt
