#pragma once

#include "Terminals/PaneStyle.h"
#include "Terminals/TerminalSession.h"
#include "Views/Kit/Tokens.h"
#include "Views/Terminal/TerminalPainter.h"

#include <QColor>

namespace Bralto {

/// A pane's theme as colours.
struct TerminalLook {
    TerminalSession::Colors colors; ///< Without one for the cursor.
    TerminalInks inks;              ///< With the cursor as it is unless a program colours it.
    QColor text;
    QColor accent;

    /// What the theme leaves open comes from the window's tokens.
    [[nodiscard]] static TerminalLook of(const PaneTheme& theme, const Tokens& tokens);
    /// The inks with a program's colour for the cursor.
    [[nodiscard]] TerminalInks inksFor(const Kovalt::ColorState& state, bool isReversed) const;
};

} // namespace Bralto
