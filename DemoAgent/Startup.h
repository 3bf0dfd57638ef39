#pragma once

#include "DemoAgent/Conversation.h"

#include <optional>

/// What decides, before the first line, whether the conversation can begin.
namespace DemoAgent::Startup {

/// The id that the command line names, else a new one.
[[nodiscard]] QString sessionId(const Arguments& arguments);

/// Takes up a stored conversation, or makes sure that a new one is new. Returns why it can't, for
/// stderr; a failed resume has written its result line by then.
[[nodiscard]] std::optional<QString> open(const Arguments& arguments, Conversation& conversation);

} // namespace DemoAgent::Startup
