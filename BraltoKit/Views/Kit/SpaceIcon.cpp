#include "Views/Kit/SpaceIcon.h"

#include "Views/Kit/Fonts.h"
#include "Views/Kit/Icon.h"
#include "Views/Kit/Ink.h"
#include "Views/Kit/Shape.h"

#include <QPainter>
#include <QPainterPath>

namespace Bralto::SpaceIcon {
namespace {

constexpr double Radius = 0.235;
constexpr double PlainBelow = 24;

void drawSymbol(QPainter& painter, const QRectF& rect, const QString& name, double share,
                const QColor& ink)
{
    const double side = rect.width() * share;
    QRectF box(0, 0, side, side);
    box.moveCenter(rect.center());
    Icon::draw(painter, box, name, ink);
}

void drawText(QPainter& painter, const QRectF& rect, const QString& text, double share, int weight,
              const QColor& ink)
{
    QFont face = font(TextRole::BodyStrong);
    if (weight == 400)
        // Only the emoji family, or a text face would win with its own drawing.
        face.setFamilies({QStringLiteral("Noto Color Emoji"), face.families().value(0)});
    face.setPointSizeF(face.pointSizeF() / typeStyle(TextRole::BodyStrong).size * rect.width() *
                       share);
    face.setWeight(QFont::Weight(weight));
    painter.setFont(face);
    painter.setPen(ink);
    painter.drawText(rect, Qt::AlignCenter | Qt::TextDontClip, text);
}

} // namespace

void draw(QPainter& painter, const QRectF& rect, const SpaceTheme& theme, const QString& name)
{
    const double side = rect.width();
    const double radius = side * Radius;
    const QColor accent = Ink::color(theme.accent());
    const QColor ink = Ink::color(markInk(theme.accent()));

    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath shape;
    shape.addRoundedRect(rect, radius, radius);
    painter.fillPath(shape, accent);
    if (side >= PlainBelow) {
        QLinearGradient light(rect.topLeft(), rect.bottomLeft());
        light.setColorAt(0, Ink::faded(Qt::white, 0.14));
        light.setColorAt(0.45, Ink::faded(Qt::white, 0));
        light.setColorAt(0.4501, Ink::faded(Qt::black, 0));
        light.setColorAt(1, Ink::faded(Qt::black, 0.10));
        painter.fillPath(shape, light);
        Shape::ring(painter, rect, radius, 0.5, Ink::faded(Qt::white, 0.16));
    }

    if (std::holds_alternative<SpaceTheme::Mark>(theme.icon)) {
        drawSymbol(painter, rect, QString::fromLatin1(Icon::Mark), 0.50, ink);
    } else if (const auto* symbol = std::get_if<SpaceTheme::Symbol>(&theme.icon)) {
        drawSymbol(painter, rect, symbol->name, 0.52, ink);
    } else if (const auto* emoji = std::get_if<SpaceTheme::Emoji>(&theme.icon)) {
        drawText(painter, rect, emoji->text, 0.47, 400, ink);
    } else {
        drawText(painter, rect, SpaceTheme::monogram(name), 0.39, 600, ink);
    }
    painter.restore();
}

} // namespace Bralto::SpaceIcon
