#pragma once

#include "Chat/ChatMarkdown.h"
#include "Views/Chat/ChatCanvas.h"

namespace Bralto::MarkdownScene {

/// Draws one block with its top left at `at`; its height. `key` names the block for its buttons;
/// `ink` is that of the text.
double draw(ChatCanvas& canvas, const MarkdownBlock& block, const QPointF& at, double width,
            const QString& key, const QColor& ink);

/// The room between two blocks.
[[nodiscard]] double gap(const MarkdownBlock& above, const MarkdownBlock& below);

/// Draws a whole text, one block below the other; its height.
double drawAll(ChatCanvas& canvas, const QString& text, const QPointF& at, double width,
               const QString& key, const QColor& ink);

} // namespace Bralto::MarkdownScene
