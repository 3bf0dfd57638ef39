#pragma once

#include <cstdint>

namespace Kovalt {

/// How the introducers of what the terminal sends are written: ESC [ or 0x9B, and their like.
enum class ControlForm : std::uint8_t { SevenBit, EightBit };

} // namespace Kovalt
