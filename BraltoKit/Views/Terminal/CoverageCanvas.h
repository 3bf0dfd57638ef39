#pragma once

#include <QPainterPath>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Bralto {

/// A small picture of coverage that shapes are drawn into. Whole pixels stay whole, so that shapes
/// of neighbouring cells meet without a seam.
class CoverageCanvas {
public:
    CoverageCanvas(int width, int height);

    [[nodiscard]] int width() const { return m_width; }
    [[nodiscard]] int height() const { return m_height; }
    [[nodiscard]] std::uint8_t at(int x, int y) const
    {
        return m_bytes[std::size_t(y) * std::size_t(m_width) + std::size_t(x)];
    }

    /// Pixels `left` up to but without `right`; what lies outside is left out.
    void fill(int left, int top, int right, int bottom, std::uint8_t coverage = 255);
    /// Smooth edges, added to what is there.
    void fill(const QPainterPath& path);
    /// A line of this thickness with flat ends.
    void stroke(const QPainterPath& path, double thickness);

    /// The rows from `top` on, as many as fit.
    [[nodiscard]] std::vector<std::uint8_t> rows(int top, int count) const;

private:
    int m_width;
    int m_height;
    std::vector<std::uint8_t> m_bytes;
};

} // namespace Bralto
