#pragma once

#include "Kovalt/CharData.h"
#include "Kovalt/SemanticMark.h"

#include <cstdint>
#include <optional>

namespace Kovalt {

enum class SemanticInputState : std::uint8_t { Idle, Prompt, Armed, Submitted };

/// What a click into a prompt's input sends.
enum class SemanticPromptClickMode : std::uint8_t {
    None,
    ClickEventsAbsolute,
    ClickEventsRelative,
    CursorKeysLine,
    CursorKeysMultiple,
    CursorKeysConservativeVertical,
    CursorKeysSmartVertical
};

/// Where a buffer stands in the dialogue with a shell that marks its prompts.
struct SemanticState {
    SemanticCode content = SemanticCode::None; ///< Given to every cell that is printed.
    SemanticInputState input = SemanticInputState::Idle;
    SemanticPromptClickMode clickMode = SemanticPromptClickMode::None;
    bool usesSpecialCursorKeys = false;
    /// The input ends with its line, since the shell won't say so.
    bool inputEndsWithLine = false;
    /// Where the open prompt began: the row's index in the ring plus `Buffer::linesTop`.
    std::optional<std::int64_t> promptStartRow;
    std::uint64_t groupCounter = 0;
    std::uint64_t activeGroup = 0; ///< 0 for none.

    bool operator==(const SemanticState&) const = default;
};

} // namespace Kovalt
