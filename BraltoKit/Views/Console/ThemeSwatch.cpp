#include "Views/Console/ThemeSwatch.h"

#include "Views/Kit/Fonts.h"
#include "Views/Kit/Ink.h"
#include "Views/Kit/PaneColors.h"
#include "Views/Kit/Shape.h"
#include "Views/Kit/TextLine.h"

#include <QPainter>

namespace Bralto {
namespace {

constexpr int Width = 60;
constexpr int Height = 40;
constexpr int NameGap = 4;
constexpr int Line = 4;
constexpr int LineGap = 5;
constexpr int LineLeft = 9;
constexpr int LineTop = 9;
constexpr double TextOpacity = 0.75;
constexpr double SecondOpacity = 0.35;

} // namespace

ThemeSwatch::ThemeSwatch(Theme& theme, const PaneTheme& look, QWidget* parent)
    : Control(theme, Ground::Sheet, parent)
    , m_look(look)
{
    setCheckable(true);
    setAutoExclusive(true);
    setText(QLatin1String(look.name));
    setAccessibleName(text());
    setFixedSize(sizeHint());
}

QSize ThemeSwatch::sizeHint() const
{
    return {Width + 2 * Margin, Height + 2 * Margin + NameGap + lineHeight(TextRole::Caption)};
}

void ThemeSwatch::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const PaneColors colors = paneColors(m_look, tokens());
    const QRectF swatch(Margin, Margin, Width, Height);
    if (isChecked())
        Shape::ring(painter, swatch.adjusted(-Margin, -Margin, Margin, Margin),
                    Measure::PaneRadius + Margin, Measure::FocusRing, tokens().accentInk);
    Shape::fill(painter, swatch, Measure::PaneRadius, colors.background);
    Shape::edgeInside(painter, swatch, Measure::PaneRadius, tokens().separator);

    const std::array<std::pair<int, QColor>, 3> lines{
        {{24, colors.accentInk},
         {36, Ink::faded(colors.foreground, TextOpacity)},
         {28, Ink::faded(colors.foreground, SecondOpacity)}}};
    double y = swatch.top() + LineTop;
    for (const auto& [length, ink] : lines) {
        Shape::fill(painter, QRectF(swatch.left() + LineLeft, y, length, Line), Line / 2.0, ink);
        y += Line + LineGap;
    }

    const QRectF name(0, swatch.bottom() + Margin + NameGap, width(),
                      lineHeight(TextRole::Caption));
    TextLine::draw(painter, name, isChecked() ? TextRole::CaptionStrong : TextRole::Caption,
                   isChecked() || underMouse() ? tokens().label : tokens().ink2, text(),
                   Qt::ElideRight, Qt::AlignHCenter);
}

} // namespace Bralto
