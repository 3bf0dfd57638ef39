#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace Kovalt {

/// A kind of terminal output that is measured by itself.
struct TerminalStream {
    const char* name;
    /// Appends some more of it; deterministic for a new generator.
    void (*append)(std::string& text, class StreamRandom& random);
    const char* prologue = ""; ///< Comes once, first.
};

/// All kinds, in the order in which they are shown.
[[nodiscard]] std::span<const TerminalStream> terminalStreams();

/// At least so many bytes of one kind, for a screen of 80 by 24.
[[nodiscard]] std::string makeStream(const TerminalStream& stream, std::size_t bytes);

} // namespace Kovalt
