#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace Kovalt {

/// Whether the program asked to be told where pasted text begins and ends (mode 2004).
enum class BracketedPaste : std::uint8_t { Off, On };

/// What the program is sent for pasted text. Line ends become CR, as the enter key sends it. In
/// brackets the text can't end the paste by itself: an end marker in it is dropped, also one that
/// only arises when another is dropped.
[[nodiscard]] std::string encodePaste(std::string_view text, BracketedPaste bracketed);

} // namespace Kovalt
