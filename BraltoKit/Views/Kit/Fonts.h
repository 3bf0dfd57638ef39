#pragma once

#include "Views/Kit/Tokens.h"

#include <QFont>
#include <QRectF>
#include <QString>

class QPainter;

namespace Bralto {

/// The font of a role at a zoom: Inter or JetBrains Mono if they are installed, else the
/// desktop's own interface and fixed fonts. Sizes may be fractional.
[[nodiscard]] QFont font(TextRole role, double zoom = 1);

/// Line height of a role at a zoom, in whole units.
[[nodiscard]] int lineHeight(TextRole role, double zoom = 1);

/// Texts in which every digit is as wide as "0", so that numbers below each other line up.
namespace Tabular {

[[nodiscard]] double width(const QFont& font, const QString& text);

/// Draws `text` on one line in `rect`, with the horizontal and vertical alignment of `flags`.
void draw(QPainter& painter, const QRectF& rect, int flags, const QString& text);

} // namespace Tabular

} // namespace Bralto
