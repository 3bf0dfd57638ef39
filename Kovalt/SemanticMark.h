#pragma once

#include <cstdint>

namespace Kovalt {

enum class SemanticPromptKind : std::uint8_t { Initial, Right, Continuation, Secondary };

/// Where something of a shell's dialogue begins on a line.
struct SemanticMark {
    enum class Kind : std::uint8_t { Prompt, Input, Output, CommandEnd };

    Kind kind = Kind::Prompt;
    SemanticPromptKind prompt = SemanticPromptKind::Initial; ///< Of a `Prompt`.
    int column = 0;
    std::uint64_t group = 0; ///< One prompt with its input and output; rises by one each.

    bool operator==(const SemanticMark&) const = default;
};

} // namespace Kovalt
