#pragma once

#include "Kovalt/BidiState.h"
#include "Kovalt/Color.h"
#include "Kovalt/EscapeSequenceParser.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace Kovalt {

class TerminalTimer;

enum class CursorStyle : std::uint8_t {
    BlinkBlock,
    SteadyBlock,
    BlinkUnderline,
    SteadyUnderline,
    BlinkBar,
    SteadyBar
};

/// The columns of a regional indicator that stands alone: 2 or 1.
enum class RegionalIndicatorWidth : std::uint8_t { Wide, Narrow };

struct TerminalOptions {
    int cols = 80; ///< At least 2.
    int rows = 25; ///< At least 1.
    /// LF also goes to the first column, until the program says otherwise.
    bool convertEol = false;
    std::string termName = "xterm-256color";
    CursorStyle cursorStyle = CursorStyle::BlinkBlock;
    bool screenReaderMode = false;
    std::optional<int> scrollback = 500; ///< Rows of history; none means that there is no history.
    int tabStopWidth = 8;
    bool enableSixelReported = true;
    std::size_t kittyImageCacheLimitBytes = 320U << 20U;
    Ansi256PaletteStrategy ansi256PaletteStrategy = Ansi256PaletteStrategy::Base16Lab;
    RegionalIndicatorWidth regionalIndicatorWidth = RegionalIndicatorWidth::Wide;
    BidiPresentationState initialBidiState;
    int maximumBidiParagraphRows = 500;
    bool initialBidiArrowKeySwap = false;

    /// A longer string sequence is dropped.
    std::size_t stringLimitBytes = EscapeSequenceParser::DefaultStringLimit;
    /// Ends synchronized output that a program forgets to end; must outlive the terminal. Without
    /// one the host calls `Terminal::endSynchronizedOutput` itself.
    TerminalTimer* timer = nullptr;
};

} // namespace Kovalt
