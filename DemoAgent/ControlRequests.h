#pragma once

#include "DemoAgent/Conversation.h"

#include <vector>

namespace DemoAgent {

/// What a control request of the app is answered with.
struct ControlReply {
    /// Lines before and after the reply itself.
    std::vector<QJsonObject> before;
    std::vector<QJsonObject> after;
    /// Absent where there is nothing to say.
    std::optional<QJsonObject> response;
    /// Not empty: the request failed.
    QString error;
};

namespace ControlRequests {

/// Carries the request out on the conversation's settings. `request` holds "subtype" and its
/// fields. `interrupt` and `stop_task` need the running turn and are the session's own.
[[nodiscard]] ControlReply answer(const QJsonObject& request, Conversation& conversation);

} // namespace ControlRequests

} // namespace DemoAgent
