#include "Views/Kit/Ink.h"

#include <algorithm>

namespace Bralto::Ink {

QColor color(const Rgb& rgb)
{
    return QColor::fromRgbF(float(std::clamp(rgb.red, 0.0, 1.0)),
                            float(std::clamp(rgb.green, 0.0, 1.0)),
                            float(std::clamp(rgb.blue, 0.0, 1.0)));
}

Rgb rgb(const QColor& color)
{
    return {double(color.redF()), double(color.greenF()), double(color.blueF())};
}

QColor hex(quint32 value)
{
    return QColor(int(value >> 16U & 0xFFU), int(value >> 8U & 0xFFU), int(value & 0xFFU));
}

QColor faded(const QColor& color, double alpha)
{
    QColor result = color;
    result.setAlphaF(float(alpha));
    return result;
}

QColor over(const QColor& top, const QColor& ground)
{
    return mixed(ground, QColor(top.red(), top.green(), top.blue()), double(top.alphaF()));
}

QColor mixed(const QColor& from, const QColor& to, double fraction)
{
    const auto part = [fraction](int start, int end) {
        return std::clamp(qRound(start + (end - start) * fraction), 0, 255);
    };
    return QColor(part(from.red(), to.red()), part(from.green(), to.green()),
                  part(from.blue(), to.blue()));
}

Rgb blend(const Rgb& from, const Rgb& to, double fraction)
{
    return {from.red + (to.red - from.red) * fraction,
            from.green + (to.green - from.green) * fraction,
            from.blue + (to.blue - from.blue) * fraction};
}

double contrast(const QColor& first, const QColor& second)
{
    return contrast(rgb(first), rgb(second));
}

double contrast(const Rgb& first, const Rgb& second)
{
    const double one = relativeLuminance(first);
    const double two = relativeLuminance(second);
    return (std::max(one, two) + 0.05) / (std::min(one, two) + 0.05);
}

} // namespace Bralto::Ink
