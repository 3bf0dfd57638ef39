#pragma once

#include "Terminals/PaneStyle.h"
#include "Views/Kit/Tokens.h"

#include <QColor>

#include <array>

namespace Bralto {

/// The colours of a terminal pane: of its text and of what stands around it. Ground, text, accent
/// and the terminal's colours are opaque, the rest lies over the ground.
struct PaneColors {
    QColor background;
    QColor foreground;
    QColor accentInk; ///< The cursor, the symbol of the focused pane, rings.
    QColor ink2;
    QColor ink3;
    QColor separator;
    QColor hover;
    QColor pressed;
    QColor selection;
    bool isDark = true;
    std::array<QColor, 8> ansi;   ///< Black, red, green, yellow, blue, magenta, cyan, white.
    std::array<QColor, 8> bright; ///< The same, a step further from the ground.

    bool operator==(const PaneColors&) const = default;
};

/// What a pane of that theme looks like in a window. A theme without colours takes the window's.
[[nodiscard]] PaneColors paneColors(const PaneTheme& theme, const Tokens& tokens);

/// The tokens for everything in a pane of that theme; a window's own tokens without its colours.
[[nodiscard]] Tokens paneTokens(const PaneTheme& theme, const Tokens& tokens);

} // namespace Bralto
