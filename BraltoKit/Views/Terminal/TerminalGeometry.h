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
    static constexpr double Side = 12; ///< Between the edge and the text.
    static constexpr double Bottom = 10;
    static constexpr int LeastCols = 2;
    static constexpr int LeastRows = 1;

    QSizeF cell{8, 16};
    QPointF origin; ///< The top left corner of the first cell.
    int cols = 80;
    int rows = 25;

    /// As many whole cells as have room in a view of this size.
    [[nodiscard]] static TerminalGeometry fitting(QSizeF size, QSizeF cell)
    {
        // A cell that a rounded size lacks a trace of is there.
        constexpr double Trace = 1e-6;
        const double cols = std::floor((size.width() - 2 * Side) / cell.width() + Trace);
        const double rows = std::floor((size.height() - Bottom) / cell.height() + Trace);
        return {cell, QPointF(Side, 0), std::max(LeastCols, int(cols)),
                std::max(LeastRows, int(rows))};
    }

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
