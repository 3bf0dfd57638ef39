#pragma once

#include "DemoAgent/Conversation.h"

namespace DemoAgent {

/// `system/init`, which opens every turn.
[[nodiscard]] QJsonObject initLine(const Conversation& conversation);

} // namespace DemoAgent
