#pragma once

#include "Base/Shortcuts.h"
#include "Views/Terminal/TerminalKeys.h"

#include <optional>

/// Which chords a terminal leaves to the program. Functions over values.
namespace Bralto::TerminalChords {

/// The command whose chord this is while a terminal has the keyboard. As everywhere else, shift
/// may be what the sign of the chord takes, and a layout without Latin letters has the chords of
/// the standard one.
[[nodiscard]] std::optional<Shortcuts::Command> command(const TerminalKeyPress& press);

/// Whether the view carries the command out by itself.
[[nodiscard]] bool isOfView(Shortcuts::Command command);

/// Whether the command means something only where there is a history: on the normal screen.
[[nodiscard]] bool needsHistory(Shortcuts::Command command);

} // namespace Bralto::TerminalChords
