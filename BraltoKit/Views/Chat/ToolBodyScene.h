#pragma once

#include "Chat/ChatMessage.h"
#include "Views/Chat/ChatCanvas.h"

namespace Bralto::ToolBodyScene {

/// What an open call shows below its head: its difference, or its input and its result; its
/// pictures. The height; 0 if there is nothing.
double draw(ChatCanvas& canvas, const ChatToolCall& call, const QPointF& at, double width);

} // namespace Bralto::ToolBodyScene
