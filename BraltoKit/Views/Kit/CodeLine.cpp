#include "Views/Kit/CodeLine.h"

#include <QFontMetricsF>
#include <QGlyphRun>
#include <QHash>
#include <QPainter>
#include <QRawFont>

namespace Bralto::CodeLine {
namespace {

struct Face {
    QRawFont raw;
    double column = 0;
};

const Face& faceOf(const QFont& font)
{
    static QHash<QString, Face> faces;
    const QString key = font.key();
    const auto known = faces.constFind(key);
    if (known != faces.constEnd())
        return *known;
    return *faces.insert(key,
                         {QRawFont::fromFont(font), QFontMetricsF(font).horizontalAdvance(u'0')});
}

} // namespace

double columnWidth(const QFont& font)
{
    return faceOf(font).column;
}

void draw(QPainter& painter, const QPointF& origin, QStringView text, const QFont& font)
{
    const Face& face = faceOf(font);
    // Glyphs by character, without shaping: shaping is what makes ligatures.
    const QList<quint32> glyphs = face.raw.glyphIndexesForString(text.toString());
    QList<quint32> indexes;
    QList<QPointF> positions;
    indexes.reserve(glyphs.size());
    positions.reserve(glyphs.size());
    for (qsizetype at = 0; at < glyphs.size(); ++at) {
        const QPointF position(double(at) * face.column, 0);
        if (glyphs[at] != 0) {
            indexes.append(glyphs[at]);
            positions.append(position);
        } else if (at < text.size()) {
            painter.setFont(font);
            painter.drawText(origin + position, QString(text[at]));
        }
    }
    if (indexes.isEmpty())
        return;
    QGlyphRun run;
    run.setRawFont(face.raw);
    run.setGlyphIndexes(indexes);
    run.setPositions(positions);
    painter.drawGlyphRun(origin, run);
}

} // namespace Bralto::CodeLine
