#pragma once

/// @file
/// The whole visible state of one conversation as a value, and the one function that changes it:
///
///     line ─> ChatProtocol::events ─> ChatEvent ─> ChatTranscript::apply ─> what changed
///
/// The agent reports every message twice, as a fine-grained stream and as finished lines; the
/// transcript merges both so that a block keeps its id all along.

#include "Chat/ChatEvent.h"

#include <QHash>
#include <QMap>
#include <QString>

#include <map>
#include <memory>
#include <vector>

namespace Bralto {

/// Facts for the status strip.
struct ChatSessionInfo {
    std::optional<QString> cliVersion, model, modelName, permissionMode, effort, cwd;
    std::optional<qint64> contextTokens, contextWindow;
    std::optional<double> costUSD;
    qint64 totalTokens = 0;

    bool operator==(const ChatSessionInfo&) const = default;
};

/// One agent that the agent started.
struct ChatSubagent {
    QString id; ///< The id of the tool call that started it.
    std::optional<QString> taskId;
    QString description;
    std::optional<QString> type;
    ChatToolStatus status = ChatToolStatus::Running;
    std::optional<QString> activity;
    qint64 toolUses = 0;
    qint64 tokens = 0;
    std::optional<QString> summary;
    bool isBackground = false;
    std::vector<ChatMessage> messages;

    bool operator==(const ChatSubagent&) const = default;
};

/// What an event changed, so that a view looks at nothing else. Changes add up with `merge`.
struct ChatTranscriptChange {
    /// Rows of `messages` whose content may differ, ascending, each once.
    std::vector<std::size_t> messages;
    bool messageList = false; ///< Messages were added or put in front; all indexes may differ.
    bool subagents = false;
    bool status = false;

    void merge(const ChatTranscriptChange& other);
    [[nodiscard]] bool isEmpty() const
    {
        return messages.empty() && !messageList && !subagents && !status;
    }
};

/// Changed only by its own functions. Copying is for tests and for history; a view reads a
/// reference and follows the changes.
class ChatTranscript {
public:
    std::vector<ChatMessage> messages;   ///< What is shown, oldest first; no id twice.
    std::vector<ChatSubagent> subagents; ///< In the order of first sight.
    ChatSessionInfo status;
    QMap<QString, QString> modelNames; ///< Model identifier to display name; the first one stays.
    double earlierCost = 0;            ///< US dollars of earlier processes of this conversation.
    double runCost = 0;                ///< US dollars of the current process.

    /// Folds one event in. Never fails: events for what it doesn't know are dropped.
    ChatTranscriptChange apply(const ChatEvent& event);

    /// Appends a message as it stands (the user's own turn).
    ChatTranscriptChange append(ChatMessage message);

    /// Ends every stream, in this transcript and in its children.
    ChatTranscriptChange finishTurn();

    /// Ends this transcript's stream.
    ChatTranscriptChange endAllStreaming();

    /// Puts an older transcript in front; what is here wins.
    ChatTranscriptChange prepend(ChatTranscript history);

    /// The label of the current model by its identifier.
    void setModel(const QString& model);

private:
    // The reducer's bookkeeping: see ChatTranscript.cpp.
    QHash<QString, QList<ChatBlock>> m_finished; ///< Blocks of each message from finished lines.
    std::map<qint64, ChatBlock> m_partial; ///< Blocks of the message being streamed, by index.
    std::optional<QString> m_streamingId;
    std::map<QString, std::shared_ptr<ChatTranscript>> m_children; ///< By tool call id.
};

} // namespace Bralto
