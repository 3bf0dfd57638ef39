#pragma once

#include "Kovalt/BidiState.h"
#include "Kovalt/CharSets.h"
#include "Kovalt/Color.h"
#include "Kovalt/ControlForm.h"
#include "Kovalt/Keyboard/KeyboardModeState.h"
#include "Kovalt/Mouse/MouseMode.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Kovalt {

enum class TerminalConformance : std::uint8_t { Vt100, Vt200, Vt300, Vt400, Vt500 };

/// The switches that a program sets, but for those of titles, colours and character sets. Those
/// that a buffer needs while text goes in (`marginMode`, `insertMode`, `wraparound`) are kept there
/// too; `Terminal` sets both.
struct TerminalModes {
    bool applicationCursor = false;
    bool applicationKeypad = false;
    bool reverseColors = false;
    bool cursorHidden = false;
    bool cursorBlink = false;
    bool originMode = false;
    bool marginMode = false;
    bool insertMode = false;
    bool wraparound = true;
    bool reverseWraparound = false;
    bool extendedReverseWraparound = false; ///< Over the end of any line, by CUB too.
    bool lineFeedMode = false;
    bool smoothScroll = false;
    bool allow80To132 = false;
    bool bracketedPasteMode = false;
    bool alternateScrollMode = true;
    bool sendFocus = false;
    bool bidiArrowKeySwap = false;
    bool mouseShiftCapture = false;
    MouseMode mouseMode = MouseMode::Off;
    MouseProtocolEncoding mouseProtocol = MouseProtocolEncoding::X10;
    TerminalConformance conformance = TerminalConformance::Vt500;
    ControlForm controlForm = ControlForm::SevenBit; ///< `EightBit` is what `send8bit` means.

    bool operator==(const TerminalModes&) const = default;
};

/// Titles and how they are told.
struct TitleState {
    /// A push onto a stack of this size loses its oldest entry.
    static constexpr std::size_t MaximumStack = 10;

    std::string terminalTitle;
    std::string iconTitle;
    std::vector<std::string> terminalTitleStack; ///< The newest last.
    std::vector<std::string> terminalIconStack;
    bool setUtf = false; ///< `xtermTitleSetUtf` and so on.
    bool setHex = false;
    bool queryUtf = false;
    bool queryHex = false;

    bool operator==(const TitleState&) const = default;
};

struct ColorState {
    BaseColors installedColors{};
    Palette defaultAnsiColors{};
    Palette ansiColors{};
    Color foreground = Color::fromBytes(0xFF, 0xFF, 0xFF);
    Color background;
    std::optional<Color> cursor;
    bool settingForeground = false; ///< The delegate is being told, so it may not be told again.
    bool settingBackground = false;
    bool settingCursor = false;

    bool operator==(const ColorState&) const = default;
};

/// Which graphic set each of G0 to G3 is, and which of them the bytes below 0x80 mean.
struct CharsetState {
    std::array<CharSetId, 4> gCharsets{};
    std::uint8_t gLevel = 0;

    [[nodiscard]] CharSetId active() const { return gCharsets[gLevel & 3]; }
    bool operator==(const CharsetState&) const = default;
};

/// Which rows differ from what was painted last, as rows of the screen and as rows that stay the
/// same when the screen scrolls.
struct RefreshState {
    int start = std::numeric_limits<int>::max();
    int end = -1;
    std::int64_t scrollInvariantStart = std::numeric_limits<std::int64_t>::max();
    std::int64_t scrollInvariantEnd = -1;

    bool operator==(const RefreshState&) const = default;
};

/// The link that printed text gets.
struct HyperlinkState {
    enum class Kind : std::uint8_t { Absent, Pending, Resolved, Unavailable };

    Kind kind = Kind::Absent;
    std::string pending; ///< The whole payload, until a cell needs it.
    std::uint16_t code = 0;
};

} // namespace Kovalt
