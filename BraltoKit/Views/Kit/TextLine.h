#pragma once

#include "Views/Kit/Tokens.h"

#include <QString>

class QPainter;
class QRectF;

/// One line of text in a role. What comes from outside is cut before it is measured, and elided.
namespace Bralto::TextLine {

/// `text` as one line: line breaks and other control characters become blanks, and what no line
/// can show is cut.
[[nodiscard]] QString flattened(const QString& text);

[[nodiscard]] double width(TextRole role, const QString& text, double zoom = 1);

/// Draws `text` in `rect`, vertically centred, elided where it doesn't fit: in the middle for
/// paths, at the end for all else.
void draw(QPainter& painter, const QRectF& rect, TextRole role, const QColor& ink,
          const QString& text, Qt::TextElideMode elide = Qt::ElideRight,
          Qt::Alignment alignment = Qt::AlignLeft, double zoom = 1);

} // namespace Bralto::TextLine
