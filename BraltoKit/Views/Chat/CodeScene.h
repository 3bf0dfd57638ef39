#pragma once

#include "Chat/ChatMarkdown.h"
#include "Views/Chat/ChatCanvas.h"

namespace Bralto::CodeScene {

/// A card with a language and a button that copies; its height.
double draw(ChatCanvas& canvas, const MarkdownBlocks::Code& code, const QPointF& at, double width,
            const QString& key);

/// The label of a fence's language: "Code" without one.
[[nodiscard]] QString label(const std::optional<QString>& language);

} // namespace Bralto::CodeScene
