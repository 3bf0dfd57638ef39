#pragma once

#include "Projects/SpaceTheme.h"

class QPainter;
class QRectF;

/// The picture of a project: a rounded square in its colour with its mark, letters, emoji or
/// symbol.
namespace Bralto::SpaceIcon {

/// Draws the icon of `theme` in `rect` (a square); `name` gives the letters of a monogram. Below
/// 24 units the fill is plain.
void draw(QPainter& painter, const QRectF& rect, const SpaceTheme& theme, const QString& name);

} // namespace Bralto::SpaceIcon
