#pragma once

#include <cstdint>

namespace Kovalt {

/// How a paragraph's bidirectional text is presented. Kept for each line; nothing reorders yet.
struct BidiPresentationState {
    enum class SupportMode : std::uint8_t { Implicit, Explicit };
    enum class Direction : std::uint8_t { LeftToRight, RightToLeft };

    SupportMode supportMode = SupportMode::Implicit;
    bool autodetectDirection = true;
    Direction fallbackDirection = Direction::LeftToRight;
    bool boxMirroring = false;

    bool operator==(const BidiPresentationState&) const = default;
};

} // namespace Kovalt
