#pragma once

#include "Views/Chat/ChatCanvas.h"

namespace Bralto::ImageScene {

/// The largest thumbnail, logical units.
inline constexpr double WidestThumbnail = 380;
inline constexpr double HighestThumbnail = 240;

/// A picture as a card that opens it; what can't be shown is a line that says so. Its height.
double draw(ChatCanvas& canvas, const ChatImage& image, const QString& key, const QPointF& at,
            double width, double highest = HighestThumbnail);

/// The size at which a picture is shown: never larger than it is, nor than its bounds.
[[nodiscard]] QSizeF fitted(const QSizeF& size, const QSizeF& bounds);

} // namespace Bralto::ImageScene
