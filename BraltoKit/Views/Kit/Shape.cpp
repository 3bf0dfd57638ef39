#include "Views/Kit/Shape.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace Bralto::Shape {

double hairline(const QPainter& painter)
{
    const double ratio = painter.device()->devicePixelRatioF();
    return std::max(1.0, std::floor(ratio)) / ratio;
}

void fill(QPainter& painter, const QRectF& rect, double radius, const QColor& color)
{
    if (color.alpha() == 0 || rect.isEmpty())
        return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    const double limit = std::min({radius, rect.width() / 2, rect.height() / 2});
    painter.drawRoundedRect(rect, limit, limit);
    painter.restore();
}

void ring(QPainter& painter, const QRectF& rect, double radius, double width, const QColor& color)
{
    const double outer = std::min({radius, rect.width() / 2, rect.height() / 2});
    const double inner = std::max(0.0, outer - width);
    QPainterPath path;
    path.setFillRule(Qt::OddEvenFill);
    path.addRoundedRect(rect, outer, outer);
    path.addRoundedRect(rect.adjusted(width, width, -width, -width), inner, inner);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(path, color);
    painter.restore();
}

void edgeInside(QPainter& painter, const QRectF& rect, double radius, const QColor& color)
{
    ring(painter, rect, radius, hairline(painter), color);
}

void edgeOutside(QPainter& painter, const QRectF& rect, double radius, const QColor& color)
{
    const double line = hairline(painter);
    ring(painter, rect.adjusted(-line, -line, line, line), radius + line, line, color);
}

void disc(QPainter& painter, const QPointF& middle, double diameter, const QColor& color)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawEllipse(middle, diameter / 2, diameter / 2);
    painter.restore();
}

} // namespace Bralto::Shape
