#pragma once

#include "Kovalt/Buffer.h"
#include "Kovalt/Position.h"

#include <cstdint>
#include <optional>
#include <utility>

namespace Kovalt {

/// Keys that must be held during a click; more than one may be.
namespace SemanticPromptClickModifiers {
inline constexpr std::uint8_t Shift = 1;
inline constexpr std::uint8_t Meta = 2;
inline constexpr std::uint8_t Control = 4;
} // namespace SemanticPromptClickModifiers

/// Whether a click into a shell's input moves its cursor: the host's choice.
struct SemanticPromptClickBehavior {
    enum class Kind : std::uint8_t { Disabled, Enabled, RequireModifier };

    Kind kind = Kind::Enabled;
    std::uint8_t modifiers = 0; ///< Of `RequireModifier`: all of them must be held.

    bool operator==(const SemanticPromptClickBehavior&) const = default;
};

/// How the cursor keys lead from the cursor to a clicked cell of the input that is being edited.
namespace PromptClick {

/// Steps in the order in which they are sent.
struct Steps {
    int home = 0;     ///< Left, before moving up or down.
    int vertical = 0; ///< Down; up if it is negative.
    int sideways = 0; ///< Right; left if it is negative.

    bool operator==(const Steps&) const = default;
};

/// The rows of the ring that hold the open prompt's input, first and last; none if no input is
/// open.
[[nodiscard]] std::optional<std::pair<int, int>> inputRows(const Buffer& buffer);
/// The row of the ring where the open prompt begins.
[[nodiscard]] std::optional<int> promptRow(const Buffer& buffer);
/// None if the cell is not in the input, or not to be reached in this mode. Behind the end of a
/// line its end is meant.
[[nodiscard]] std::optional<Steps> stepsTo(const Buffer& buffer, Position cell);

} // namespace PromptClick

} // namespace Kovalt
