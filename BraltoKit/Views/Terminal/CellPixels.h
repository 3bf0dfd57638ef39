#pragma once

#include "Views/Terminal/GlyphMask.h"

#include <QRgb>

#include <cstddef>

namespace Bralto {

/// Writes masks and colours into opaque pixels. Everything is clipped on the right by the caller's
/// width.
namespace CellPixels {

struct Area {
    QRgb* pixels; ///< The upper left one.
    std::ptrdiff_t stride;
    int width;
    int height;
};

void fill(const Area& area, QRgb color);
/// `ramp` has the colour of each coverage; every pixel of the area that the mask covers is written.
void write(const Area& area, const GlyphMask& mask, const QRgb* ramp);
/// A coverage in one colour over what is there.
void blend(const Area& area, const GlyphMask& mask, QRgb color);
/// A picture over a plain ground.
void writePicture(const Area& area, const GlyphMask& mask, QRgb ground);

} // namespace CellPixels

} // namespace Bralto
