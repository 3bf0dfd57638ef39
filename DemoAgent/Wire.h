#pragma once

#include "DemoAgent/Ledger.h"

#include <QByteArray>
#include <QJsonArray>
#include <QJsonObject>
#include <QString>

#include <optional>

namespace DemoAgent {

/// A call of a tool, as the model would have made it.
struct ToolUse {
    QString id;
    QString name;
    QJsonObject input;
    /// One line for the permission card; may be empty.
    QString description;
};

/// How a tool call ended.
struct ToolResult {
    /// A text, or an array of text and image blocks.
    QJsonValue content;
    bool isError = false;
    /// What stands beside the message: an object, a string, or nothing (null).
    QJsonValue details;
};

/// The lines of the protocol, built field by field. Without `uuid` and `session_id`, which the
/// writer adds.
namespace Wire {

/// One line: compact JSON and a line feed.
[[nodiscard]] QByteArray encode(const QJsonObject& line);

[[nodiscard]] QJsonObject requesting();
[[nodiscard]] QJsonObject modeStatus(const QString& permissionMode);
[[nodiscard]] QJsonObject status(const QString& status);

[[nodiscard]] QJsonObject messageStart(const QString& messageId, const QString& model,
                                       const Usage& usage);
[[nodiscard]] QJsonObject blockStart(const QString& messageId, int index, const QJsonObject& block);
[[nodiscard]] QJsonObject blockDelta(const QString& messageId, int index, const QJsonObject& delta);
[[nodiscard]] QJsonObject blockStop(const QString& messageId, int index);
/// `stopReason` is null for a message that was broken off.
[[nodiscard]] QJsonObject messageDelta(const QString& messageId, const QJsonValue& stopReason,
                                       const Usage& usage);
[[nodiscard]] QJsonObject messageStop(const QString& messageId);

[[nodiscard]] QJsonObject textBlock(const QString& text);
[[nodiscard]] QJsonObject thinkingBlock(const QString& thinking);
[[nodiscard]] QJsonObject toolBlock(const ToolUse& use);
[[nodiscard]] QJsonObject imageBlock(const QByteArray& png);

/// The `message` object of an assistant line with one block.
[[nodiscard]] QJsonObject assistantMessage(const QString& messageId, const QString& model,
                                           const QJsonObject& block, const QJsonValue& stopReason,
                                           const Usage& usage);
[[nodiscard]] QJsonObject assistant(const QJsonObject& message);
/// The `message` object of a tool's result.
[[nodiscard]] QJsonObject toolResultMessage(const QString& toolUseId, const ToolResult& result);
[[nodiscard]] QJsonObject toolResult(const QString& toolUseId, const ToolResult& result);
[[nodiscard]] QJsonObject userMessage(const QJsonValue& content);
/// A user line of the agent's own making, such as "[Request interrupted by user]".
[[nodiscard]] QJsonObject user(const QJsonValue& content);

[[nodiscard]] QJsonObject canUseTool(const QString& requestId, const ToolUse& use,
                                     const QJsonObject& input);
[[nodiscard]] QJsonObject cancelRequest(const QString& requestId);

/// `response` is left out where there is nothing to say.
[[nodiscard]] QJsonObject reply(const QString& requestId,
                                const std::optional<QJsonObject>& response);
[[nodiscard]] QJsonObject replyError(const QString& requestId, const QString& error);

} // namespace Wire

/// `text` in pieces of about `size` characters; no piece ends within a surrogate pair.
[[nodiscard]] QStringList pieces(const QString& text, qsizetype size);

/// A random id in the form of the API's: a prefix and 24 hexadecimal digits.
[[nodiscard]] QString makeId(QLatin1StringView prefix);
/// A random UUID in lower case, without braces.
[[nodiscard]] QString makeUuid();
/// Now, in UTC, with milliseconds: "2026-11-21T00:43:11.614Z".
[[nodiscard]] QString timestamp();

} // namespace DemoAgent
