#pragma once

#include "Kovalt/BufferLine.h"
#include "Views/Terminal/CoverageCanvas.h"
#include "Views/Terminal/GlyphMask.h"

#include <QFont>
#include <QRawFont>
#include <QSize>
#include <QString>

/// Draws text into masks. Device pixels.
namespace Bralto::GlyphDrawing {

/// Where text goes.
struct Box {
    QSize size; ///< Of all its cells, before the row's mode makes them larger.
    double baseline = 0;
    Kovalt::RenderLineMode mode = Kovalt::RenderLineMode::Single;
};
/// What a face lacks and is made up for.
struct Synthesis {
    bool bold = false;
    bool italic = false;
};

/// How much a row's mode stretches its cells, and the first row of what then shows.
struct Stretch {
    int x = 1;
    int y = 1;
    int top = 0; ///< In cells.
};
[[nodiscard]] Stretch stretch(Kovalt::RenderLineMode mode);

/// One glyph of the face itself.
[[nodiscard]] GlyphMask glyph(const QRawFont& font, quint32 index, const Box& box,
                              Synthesis synthesis);
/// Text with all that shaping and other fonts bring; made narrower if it doesn't fit.
[[nodiscard]] GlyphMask layout(const QFont& font, double size, const QString& text, const Box& box,
                               Synthesis synthesis);
/// What was drawn over all cells of the box, at the stretch of its mode.
[[nodiscard]] GlyphMask mask(const CoverageCanvas& canvas, const Box& box);

/// Whether a text is to be shown as a coloured picture rather than as a letter.
[[nodiscard]] bool isEmoji(const QString& text, int columns);

} // namespace Bralto::GlyphDrawing
