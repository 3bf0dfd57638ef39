#include "Views/Kit/TextLine.h"

#include "Views/Kit/Fonts.h"

#include <QFontMetricsF>
#include <QPainter>

namespace Bralto::TextLine {
namespace {

/// More letters than a line of the widest screen has.
constexpr qsizetype LongestLine = 2000;

} // namespace

QString flattened(const QString& text)
{
    QString line = text.left(LongestLine);
    for (QChar& character : line) {
        const bool breaks = character.category() == QChar::Other_Control ||
                            character.category() == QChar::Separator_Line ||
                            character.category() == QChar::Separator_Paragraph;
        if (breaks)
            character = u' ';
    }
    return line;
}

double width(TextRole role, const QString& text, double zoom)
{
    return QFontMetricsF(font(role, zoom)).horizontalAdvance(flattened(text));
}

void draw(QPainter& painter, const QRectF& rect, TextRole role, const QColor& ink,
          const QString& text, Qt::TextElideMode elide, Qt::Alignment alignment, double zoom)
{
    if (rect.width() <= 0 || text.isEmpty())
        return;
    const QFont face = font(role, zoom);
    const QFontMetricsF metrics(face);
    QString line = flattened(text);
    // Half a unit of slack: a rectangle that was made from this very width must not elide.
    if (metrics.horizontalAdvance(line) > rect.width() + 0.5)
        line = metrics.elidedText(line, elide, rect.width());
    painter.setFont(face);
    painter.setPen(ink);
    painter.drawText(
        rect, int(Qt::AlignVCenter | alignment) | Qt::TextSingleLine | Qt::TextDontClip, line);
}

} // namespace Bralto::TextLine
