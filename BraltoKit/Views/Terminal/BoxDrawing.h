#pragma once

namespace Bralto {

class CoverageCanvas;

/// Characters that have to join their neighbours: lines, blocks, mosaics, arrow heads of prompts.
/// Fonts leave gaps between them, so they are drawn on the grid of pixels.
namespace BoxDrawing {

/// No character below is drawn.
inline constexpr char32_t First = 0x23BA;

/// Draws the character over the whole canvas, which is one cell, with light lines of `line`
/// pixels. False, and nothing drawn, if it is another character.
[[nodiscard]] bool draw(char32_t scalar, CoverageCanvas& canvas, int line);

/// The parts of `draw`: U+2500 to U+257F, the rules at other heights, and the rest.
[[nodiscard]] bool drawLines(char32_t scalar, CoverageCanvas& canvas, int line);
[[nodiscard]] bool drawRules(char32_t scalar, CoverageCanvas& canvas, int line);
[[nodiscard]] bool drawBlocks(char32_t scalar, CoverageCanvas& canvas);
[[nodiscard]] bool drawArrowHeads(char32_t scalar, CoverageCanvas& canvas, int line);

} // namespace BoxDrawing

} // namespace Bralto
