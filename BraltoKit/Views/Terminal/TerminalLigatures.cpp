#include "Views/Terminal/TerminalLigatures.h"

#include <QGlyphRun>
#include <QTextLayout>

#include <algorithm>

namespace Bralto::TerminalLigatures {
namespace {

bool isSign(const Kovalt::CharData& cell)
{
    const std::int32_t code = cell.code;
    const bool isLetter = (code >= '0' && code <= '9') || (code >= 'A' && code <= 'Z') ||
                          (code >= 'a' && code <= 'z');
    return code > ' ' && code < 0x7F && !isLetter && cell.width == 1;
}

} // namespace

std::string signsAt(std::span<const Kovalt::CharData> cells)
{
    std::string signs;
    for (const Kovalt::CharData& cell : cells.first(std::min(cells.size(), Longest))) {
        if (!isSign(cell) || cell.attribute != cells.front().attribute)
            break;
        signs += char(cell.code);
    }
    return signs.size() < 2 ? std::string() : signs;
}

bool joins(const QFont& font, const QRawFont& raw, const QString& signs)
{
    QTextLayout layout(signs, font);
    layout.beginLayout();
    QTextLine line = layout.createLine();
    if (!line.isValid())
        return false;
    line.setLineWidth(1e6);
    layout.endLayout();
    QList<quint32> together;
    for (const QGlyphRun& run : layout.glyphRuns())
        together += run.glyphIndexes();
    return together != raw.glyphIndexesForString(signs);
}

} // namespace Bralto::TerminalLigatures
