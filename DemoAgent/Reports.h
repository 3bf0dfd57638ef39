#pragma once

#include "DemoAgent/Conversation.h"

/// The replies behind the app's cards, and the same as text for the slash commands.
namespace DemoAgent::Reports {

[[nodiscard]] QJsonObject context(const Conversation& conversation);
[[nodiscard]] QJsonObject cost(const Conversation& conversation);
[[nodiscard]] QJsonObject usage(const Conversation& conversation);
[[nodiscard]] QJsonObject status(const Conversation& conversation);
[[nodiscard]] QJsonObject mcpServers(const Conversation& conversation);

[[nodiscard]] QString contextText(const Conversation& conversation);
[[nodiscard]] QString costText(const Conversation& conversation);

} // namespace DemoAgent::Reports
