#pragma once

#include <QColor>
#include <QPixmap>
#include <QRectF>
#include <QString>

class QPainter;

namespace Bralto::Icon {

/// Draws the symbol `name` of our family in `rect` (a square, logical units) in `ink`, from its
/// paths at the painter's own device scale. An unknown name draws `doc`.
void draw(QPainter& painter, const QRectF& rect, const QString& name, const QColor& ink);

/// The symbol as a picture of `size` logical units at a device pixel ratio.
[[nodiscard]] QPixmap pixmap(const QString& name, double size, const QColor& ink, double ratio);

/// Whether the family has the symbol.
[[nodiscard]] bool exists(const QString& name);

/// The program's own mark stands in the same family under this name.
inline constexpr char Mark[] = "bralto.mark";

} // namespace Bralto::Icon
