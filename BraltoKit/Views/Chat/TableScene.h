#pragma once

#include "Chat/ChatMarkdown.h"
#include "Views/Chat/ChatCanvas.h"

namespace Bralto::TableScene {

/// A table in a frame, as wide as the column; its height.
double draw(ChatCanvas& canvas, const MarkdownBlocks::Table& table, const QPointF& at, double width,
            const QColor& ink);

/// How `available` is shared among columns that would like `wanted`: what is left over goes to all
/// in proportion; if it is too little, the narrow ones keep theirs.
[[nodiscard]] std::vector<double> columnWidths(std::vector<double> wanted, double available);

/// Whether a column has numbers only, which stand at the right.
[[nodiscard]] bool isNumeric(const MarkdownBlocks::Table& table, qsizetype column);

} // namespace Bralto::TableScene
