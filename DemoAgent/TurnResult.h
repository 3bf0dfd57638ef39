#pragma once

#include "DemoAgent/Conversation.h"

namespace DemoAgent::TurnResult {

/// The fields that tell how a turn went.
[[nodiscard]] QJsonObject success(const QString& text, int calls);
[[nodiscard]] QJsonObject aborted(const QString& reason, int calls);
/// A failure of the API: no error by its subtype.
[[nodiscard]] QJsonObject apiError(const QString& text, int status);

/// Adds usage, cost and counters, and sends the line.
void send(Conversation& conversation, QJsonObject fields);

} // namespace DemoAgent::TurnResult
