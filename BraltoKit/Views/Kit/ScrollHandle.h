#pragma once

#include <QRectF>
#include <QSizeF>

class QColor;
class QPainter;

namespace Bralto {

/// The handle of a slim scroll bar: where it is, and what it looks like. Logical units.
struct ScrollHandle {
    static constexpr int Width = 12; ///< Of the bar.
    static constexpr int Inset = 3;

    double minimum = 0;
    double maximum = 0;
    double page = 0;
    double value = 0;

    /// Empty if there is nothing to scroll.
    [[nodiscard]] QRectF rect(QSizeF bar) const;
    /// The value when the handle's top is at `top`.
    [[nodiscard]] double valueAt(QSizeF bar, double top) const;
    /// `isStrong` while it is in use.
    static void paint(QPainter& painter, QRectF rect, const QColor& label, bool isStrong);
};

} // namespace Bralto
