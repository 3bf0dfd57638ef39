#include "Views/Terminal/CellPixels.h"

#include "Views/Terminal/TerminalPalette.h"

#include <algorithm>
#include <cstdint>

namespace Bralto::CellPixels {

void fill(const Area& area, QRgb color)
{
    QRgb* row = area.pixels;
    for (int y = 0; y < area.height; ++y, row += area.stride)
        std::fill_n(row, area.width, color);
}

void write(const Area& area, const GlyphMask& mask, const QRgb* ramp)
{
    const int width = std::min(area.width, mask.width);
    const int height = std::min(area.height, mask.height);
    const std::uint8_t* coverage = mask.coverage.data();
    QRgb* row = area.pixels;
    for (int y = 0; y < height; ++y, row += area.stride, coverage += mask.width) {
        for (int x = 0; x < width; ++x)
            row[x] = ramp[coverage[x]];
    }
}

void blend(const Area& area, const GlyphMask& mask, QRgb color)
{
    const int width = std::min(area.width, mask.width);
    const int height = std::min(area.height, mask.height);
    const std::uint8_t* coverage = mask.coverage.data();
    QRgb* row = area.pixels;
    for (int y = 0; y < height; ++y, row += area.stride, coverage += mask.width) {
        for (int x = 0; x < width; ++x) {
            const unsigned share = coverage[x];
            if (share != 0)
                row[x] = Pixels::mixed(row[x], color, share + (share >> 7U));
        }
    }
}

void writePicture(const Area& area, const GlyphMask& mask, QRgb ground)
{
    const int width = std::min(area.width, mask.width);
    const int height = std::min(area.height, mask.height);
    const QRgb* picture = mask.picture.data();
    QRgb* row = area.pixels;
    for (int y = 0; y < height; ++y, row += area.stride, picture += mask.width) {
        for (int x = 0; x < width; ++x) {
            // The picture has its alpha multiplied in, so only the ground is weighed.
            const QRgb faded =
                Pixels::mixed(ground, 0xFF000000U, qAlpha(picture[x]) + (qAlpha(picture[x]) >> 7));
            row[x] = 0xFF000000U | qRgb(std::min(255, qRed(picture[x]) + qRed(faded)),
                                        std::min(255, qGreen(picture[x]) + qGreen(faded)),
                                        std::min(255, qBlue(picture[x]) + qBlue(faded)));
        }
    }
}

} // namespace Bralto::CellPixels
