#pragma once

#include "Chat/ClaudeChat.h"

#include <QByteArray>

#include <vector>

namespace Bralto {

/// The lines in which a live conversation tells what it does: one JSON object each, ended by a
/// line feed, with the kind at "event".
namespace LiveReport {

/// The forms of all lines, for a help text.
[[nodiscard]] const char* help();

[[nodiscard]] QByteArray error(const QString& text);
[[nodiscard]] QByteArray session(const ClaudeChat& chat);
[[nodiscard]] QByteArray state(const ChatState& state);
[[nodiscard]] QByteArray title(const QString& title);
[[nodiscard]] QByteArray question(const std::optional<ChatQuestion>& question);
[[nodiscard]] QByteArray permission(const std::optional<ChatPermission>& permission);
[[nodiscard]] QByteArray commands(const QList<ChatCommand>& commands);
[[nodiscard]] QByteArray models(const ClaudeChat& chat);
[[nodiscard]] QByteArray remoteControl(const ChatRemoteControl& remoteControl);
[[nodiscard]] QByteArray history(bool isLoading);
[[nodiscard]] QByteArray agentMissing(bool isMissing);
[[nodiscard]] QByteArray turnEnded();
[[nodiscard]] QByteArray reply(const QString& subtype,
                               const Expected<QByteArray, ChatControlError>& reply);
[[nodiscard]] QByteArray message(std::size_t row, const ChatMessage& message);
[[nodiscard]] QByteArray subagents(const std::vector<ChatSubagent>& subagents);
[[nodiscard]] QByteArray status(const ChatSessionInfo& status);

} // namespace LiveReport

} // namespace Bralto
