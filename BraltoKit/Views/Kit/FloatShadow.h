#pragma once

#include "Views/Kit/Tokens.h"

class QPainter;
class QRectF;

/// What floats: its soft shadow, its ground and its edge.
namespace Bralto::Float {

/// Room that the shadow needs on every side.
inline constexpr int ShadowMargin = Measure::ShadowBlur + Measure::ShadowDrop;

/// The shadow below a rounded rectangle, nine parts of one cached picture.
void drawShadow(QPainter& painter, const QRectF& rect, int radius, const Tokens& tokens);

/// The ground of something that floats with its edge, which lies outside `rect`.
void drawPanel(QPainter& painter, const QRectF& rect, int radius, const Tokens& tokens);

} // namespace Bralto::Float
