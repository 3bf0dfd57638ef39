#pragma once

#include <cstdint>
#include <string>

namespace Kovalt {

class Terminal;

/// What stands on a terminal's active screen, written down. All in UTF-8.
namespace ScreenDump {

enum class Range : std::uint8_t { Screen, ScreenAndHistory };

/// A line a row, without the empty cells at its end.
[[nodiscard]] std::string text(const Terminal& terminal, Range range = Range::Screen);
/// Text and sequences that write the same cells on an empty screen of the same size; only an empty
/// cell with more looks than a background becomes a blank. Ends without a line feed.
[[nodiscard]] std::string sgr(const Terminal& terminal, Range range = Range::Screen);
/// One object: size, cursor, titles, modes, and the rows with runs of cells that look alike.
[[nodiscard]] std::string json(const Terminal& terminal, Range range = Range::Screen);

} // namespace ScreenDump

} // namespace Kovalt
