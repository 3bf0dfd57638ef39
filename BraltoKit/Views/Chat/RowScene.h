#pragma once

/// @file
/// The rows of a conversation that are neither replies nor tool calls.

#include "Chat/ChatWorkingRow.h"
#include "Views/Chat/ChatCanvas.h"

namespace Bralto::RowScene {

/// The line above the first message; its height.
double drawBanner(ChatCanvas& canvas, const QStringList& parts, const QPointF& at, double width);

/// The user's own turn: a card at the right, its pictures below it.
double drawUserTurn(ChatCanvas& canvas, const ChatMessage& message, const QPointF& at,
                    double width);

/// A line of the agent's program or of our own; a long one is folded.
double drawNotice(ChatCanvas& canvas, const ChatMessage& message, const QPointF& at, double width);

/// What the agent thought, folded until `block.id` is open.
double drawThinking(ChatCanvas& canvas, const ChatThinkingBlock& block, const QString& title,
                    bool isThinking, const QPointF& at, double width);

/// What happens while no message says it, or why it doesn't.
double drawWorking(ChatCanvas& canvas, const ChatWorkingRow& row, const QPointF& at, double width);

} // namespace Bralto::RowScene
