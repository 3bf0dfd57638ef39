#pragma once

#include <QFont>
#include <QPointF>
#include <QStringView>

class QPainter;

/// Code on one line: a column a character, and no ligatures, so that what stands there is what
/// was written.
namespace Bralto::CodeLine {

/// The width of a column of a code font.
[[nodiscard]] double columnWidth(const QFont& font);

/// Draws `text` with the painter's pen, its first character's origin at `origin`. Characters that
/// the font doesn't have come from others, each still in its own column. `text` has no tabs, and
/// nothing that takes more than a column.
void draw(QPainter& painter, const QPointF& origin, QStringView text, const QFont& font);

} // namespace Bralto::CodeLine
