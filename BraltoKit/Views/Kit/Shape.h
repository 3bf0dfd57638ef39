#pragma once

#include <QColor>
#include <QRectF>

class QPainter;

/// Rounded fills and one-unit edges that stay sharp at every device scale.
namespace Bralto::Shape {

/// The thickness of a hairline: one unit in whole device pixels, rounded down, never nothing.
[[nodiscard]] double hairline(const QPainter& painter);

void fill(QPainter& painter, const QRectF& rect, double radius, const QColor& color);

/// An edge just inside `rect`: of cards and fields.
void edgeInside(QPainter& painter, const QRectF& rect, double radius, const QColor& color);

/// An edge just outside `rect`: of sheets, panes and what floats.
void edgeOutside(QPainter& painter, const QRectF& rect, double radius, const QColor& color);

/// A ring `width` thick inside `rect`.
void ring(QPainter& painter, const QRectF& rect, double radius, double width, const QColor& color);

/// A disc around the middle of `rect`.
void disc(QPainter& painter, const QPointF& middle, double diameter, const QColor& color);

} // namespace Bralto::Shape
