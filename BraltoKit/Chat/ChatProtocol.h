#pragma once

/// @file
/// The agent's wire: one JSON object a line in both directions. `events` turns a parsed line into
/// values, the other functions build the lines that go out. Nothing here does I/O or keeps state;
/// every function may be called on any thread.

#include "Chat/ChatEvent.h"

#include <QByteArray>
#include <QDateTime>
#include <QMap>
#include <QString>
#include <QVariantMap>

#include <vector>

namespace Bralto::ChatProtocol {

/// Where a line comes from.
enum class Source {
    Live,   ///< The agent's standard output.
    Stored, ///< A conversation file.
};

/// What one line means: none, one or several events. Never fails. `now` dates a line that has no
/// time of its own; `home` is abbreviated in summaries.
[[nodiscard]] std::vector<ChatEvent> events(const JsonObject& line, Source source,
                                            const QDateTime& now, const QString& home);

[[nodiscard]] std::optional<ChatBlock> block(const JsonObject& object, const QString& fallbackId,
                                             const QString& home);
[[nodiscard]] std::optional<ChatImage> image(const JsonObject& block);
[[nodiscard]] ChatQuestion question(const std::optional<JsonObject>& input, const QString& id);

/// The one line that describes a call of the tool `name`; `input` absent counts as empty.
[[nodiscard]] QString summary(const QString& name, const std::optional<JsonObject>& input,
                              const QString& home);

[[nodiscard]] ChatToolCall toolCall(const QString& id, const QString& name,
                                    const std::optional<JsonObject>& input, const QString& home);

/// What fills the context window; absent instead of 0.
[[nodiscard]] std::optional<qint64> contextTokens(const std::optional<JsonObject>& usage);

/// A model identifier as a label: "claude-opus-4-7[1m]" is "Opus 4.7".
[[nodiscard]] QString displayName(const QString& model);

/// The line that the user typed, if `text` is the stored form of a slash command.
[[nodiscard]] std::optional<QString> slashCommand(const QString& text);

/// What a typed turn says: the mentions of its files, an empty line, the text.
[[nodiscard]] QString promptText(const QString& text, const QList<ChatAttachment>& attachments,
                                 const QString& folder);

/// The message that shows a typed turn.
[[nodiscard]] ChatMessage userMessage(const QString& text, const QList<ChatAttachment>& attachments,
                                      const QString& folder, const QString& id,
                                      const QDateTime& now);

/// Every line below ends with one line feed; one that can't be built is "{}".
[[nodiscard]] QByteArray userLine(const QString& text, const QList<ChatAttachment>& attachments,
                                  const QString& folder);
[[nodiscard]] QByteArray initializeRequest(const QString& id);
[[nodiscard]] QByteArray interruptRequest(const QString& id);
[[nodiscard]] QByteArray controlRequest(const QString& id, const QString& subtype,
                                        const QVariantMap& fields);
/// Allows a request with the input it came with. `answers` are set in it when given, else removed.
[[nodiscard]] QByteArray allow(const QString& requestId, const QByteArray& input,
                               const std::optional<QMap<QString, QString>>& answers);
[[nodiscard]] QByteArray deny(const QString& requestId, const QString& message);
[[nodiscard]] QByteArray unsupported(const QString& requestId);

} // namespace Bralto::ChatProtocol
