#pragma once

#include "Kovalt/SemanticMark.h"
#include "Kovalt/SemanticState.h"

#include <optional>
#include <string_view>

namespace Kovalt {

/// What a shell says of a prompt that it marks (OSC 133).
struct SemanticPromptOptions {
    SemanticPromptKind kind = SemanticPromptKind::Initial;
    /// None if nothing was said of clicks. Click events, if they are asked for, win over keys.
    std::optional<SemanticPromptClickMode> clickMode;
    std::optional<bool> usesSpecialCursorKeys;

    bool operator==(const SemanticPromptOptions&) const = default;
};

/// Reads the fields behind the letter, ";" between them. Unknown keys and fields without "=" are
/// passed over, the last of equal keys counts. None if a known key has a value that it can't have.
[[nodiscard]] std::optional<SemanticPromptOptions>
parseSemanticPromptOptions(std::string_view fields);

} // namespace Kovalt
