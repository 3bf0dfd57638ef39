#pragma once

class QWidget;

namespace Bralto {

class Theme;

namespace Float {

/// Makes a window of its own one that floats: see-through around its panel, which lies `margin`
/// inside it. On a screen where nothing can be see-through the window is cut to its panel instead.
/// A second call changes nothing; `theme` must outlive it.
void makeWindow(QWidget& window, const Theme& theme, int margin, int radius);

} // namespace Float
} // namespace Bralto
