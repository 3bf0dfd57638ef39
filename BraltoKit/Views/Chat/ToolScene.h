#pragma once

/// @file
/// Tool calls as rows and cards: folded they are a line without a ground, open they are a card.

#include "Chat/ToolPresentation.h"
#include "Views/Chat/ChatCanvas.h"

#include <span>

namespace Bralto::ToolScene {

/// Finds the agent that a call started; null for other calls.
using FindAgent = std::function<const ChatSubagent*(const QString& callId)>;

/// One call: its row, or its card if `call.id` is open.
double drawCall(ChatCanvas& canvas, const ChatToolCall& call, const FindAgent& findAgent,
                const QPointF& at, double width);

/// A folded group: its row, or its card with an ordinary row for each call if `id` is open.
double drawGroup(ChatCanvas& canvas, const QString& id, std::span<const ChatBlock> blocks,
                 const FindAgent& findAgent, const QPointF& at, double width);

/// How far a group has come: running while one call runs, failed if one failed.
[[nodiscard]] ChatToolStatus groupStatus(std::span<const ChatBlock> blocks);

} // namespace Bralto::ToolScene
