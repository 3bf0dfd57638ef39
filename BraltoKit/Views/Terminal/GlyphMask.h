#pragma once

#include <QRgb>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Bralto {

/// What a character leaves on the cells that it stands in. Device pixels, row by row.
struct GlyphMask {
    enum class Kind : std::uint8_t {
        Blank,
        Coverage, ///< Takes the ink of its text.
        Picture,  ///< Has colours of its own: an emoji.
    };

    Kind kind = Kind::Blank;
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> coverage; ///< Of `Coverage`, 0 to 255.
    std::vector<QRgb> picture;          ///< Of `Picture`, premultiplied.

    [[nodiscard]] std::size_t bytes() const
    {
        return sizeof(GlyphMask) + coverage.size() + picture.size() * sizeof(QRgb);
    }
};

} // namespace Bralto
