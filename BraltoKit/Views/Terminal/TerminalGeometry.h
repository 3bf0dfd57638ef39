#pragma once

#include "Kovalt/Position.h"

#include <QPointF>
#include <QRectF>
#include <QSizeF>

#include <algorithm>
#include <cmath>

namespace Bralto {

/// Where the cells of a terminal's view are: whole rows and columns from a corner on. Logical
/// units; cells are a whole number of device pixels.
struct TerminalGeometry {
    QSizeF cell{8, 16};
    QPointF origin; ///< The top left corner of the first cell.
    int cols = 80;
    int rows = 25;

    /// The cells from `col` to the right in a row of the view.
    [[nodiscard]] QRectF rect(int col, int row, int count = 1) const
    {
        return {origin.x() + col * cell.width(), origin.y() + row * cell.height(),
                count * cell.width(), cell.height()};
    }
    /// The cell under a point; outside the nearest.
    [[nodiscard]] Kovalt::Position cellAt(QPointF point) const
    {
        const int col = int(std::floor((point.x() - origin.x()) / cell.width()));
        const int row = int(std::floor((point.y() - origin.y()) / cell.height()));
        return {std::clamp(col, 0, cols - 1), std::clamp(row, 0, rows - 1)};
    }

    bool operator==(const TerminalGeometry&) const = default;
};

} // namespace Bralto
