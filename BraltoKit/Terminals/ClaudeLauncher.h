#pragma once

#include "Chat/ChatHost.h"

#include <QString>

/// The line that starts the agent in a terminal pane's shell. A pane's identifier is the agent's
/// own session id: the program chooses it, and the agent is told either to create it or to resume
/// it.
namespace Bralto::ClaudeLauncher {

/// The user's own command for the agent.
[[nodiscard]] QString baseCommand(const ChatHost& host);

/// Whether the agent has a stored conversation of that id, a UUID in lower case.
[[nodiscard]] bool hasTranscript(const ChatHost& host, const QString& session);

/// The whole line, without a line feed, for the conversation `session`, a UUID. The user is asked
/// for consent to the agent's hooks first, if that is still open.
[[nodiscard]] QString command(ChatHost& host, const QString& session);

} // namespace Bralto::ClaudeLauncher
