#include "Views/Kit/ScrollHandle.h"

#include "Views/Kit/Ink.h"
#include "Views/Kit/Shape.h"

#include <QPainter>

#include <algorithm>

namespace Bralto {
namespace {

constexpr double LeastLength = 28;

} // namespace

QRectF ScrollHandle::rect(QSizeF bar) const
{
    const double range = maximum - minimum;
    const double whole = range + page;
    const double track = bar.height() - 2.0 * Inset;
    if (range <= 0 || whole <= 0 || track <= 0)
        return {};
    const double length = std::clamp(track * page / whole, std::min(LeastLength, track), track);
    const double top = Inset + (track - length) * (value - minimum) / range;
    return {double(Inset), top, double(Width - 2 * Inset), length};
}

double ScrollHandle::valueAt(QSizeF bar, double top) const
{
    const double free = bar.height() - 2.0 * Inset - rect(bar).height();
    if (free <= 0)
        return value;
    return minimum + std::clamp((top - Inset) / free, 0.0, 1.0) * (maximum - minimum);
}

void ScrollHandle::paint(QPainter& painter, QRectF rect, const QColor& label, bool isStrong)
{
    if (!isStrong)
        rect.setLeft(rect.left() + 2);
    Shape::fill(painter, rect, Width, Ink::faded(label, isStrong ? 0.42 : 0.22));
}

} // namespace Bralto
