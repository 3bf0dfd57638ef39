#include "Views/Console/StylePreview.h"

#include "Views/Kit/Fonts.h"
#include "Views/Kit/PaneColors.h"
#include "Views/Kit/Shape.h"

#include <QFontMetricsF>
#include <QPainter>

namespace Bralto {
namespace {

constexpr int Height = 36;
constexpr int Padding = 12;

} // namespace

StylePreview::StylePreview(Theme& theme, QWidget* parent)
    : ThemedWidget(theme, parent)
{
    setFixedHeight(Height);
    setAccessibleName(text());
}

void StylePreview::setStyle(const PaneStyle& style)
{
    m_style = style;
    update();
}

QFont StylePreview::font(const PaneStyle& style)
{
    const double size = typeStyle(TextRole::Terminal).size;
    QFont result = Bralto::font(TextRole::Terminal, style.fontSize.value_or(size) / size);
    if (style.fontFamily)
        result.setFamilies(QStringList(*style.fontFamily) + result.families());
    return result;
}

void StylePreview::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const PaneColors colors = paneColors(PaneTheme::named(m_style.theme), tokens());
    Shape::fill(painter, rect(), Measure::PaneRadius, colors.background);
    Shape::edgeInside(painter, rect(), Measure::PaneRadius, tokens().separator);

    const QFont face = font(m_style);
    const QFontMetricsF metrics(face);
    const double baseline = (height() + metrics.ascent() - metrics.descent()) / 2;
    const QString line = text();
    painter.setFont(face);
    painter.setPen(colors.accentInk);
    painter.drawText(QPointF(Padding, baseline), line.left(1));
    painter.setPen(colors.foreground);
    painter.drawText(QPointF(Padding + metrics.horizontalAdvance(line.left(1)), baseline),
                     line.mid(1));
    const double end = Padding + metrics.horizontalAdvance(line);
    painter.fillRect(QRectF(end, baseline - metrics.ascent(), metrics.horizontalAdvance(u'0'),
                            metrics.ascent() + metrics.descent()),
                     colors.accentInk);
}

} // namespace Bralto
