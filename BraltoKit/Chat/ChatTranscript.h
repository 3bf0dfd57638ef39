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
#include <optional>
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
    /// Rows of `messages` whose content may differ, ascending, each once; new rows are among them.
    std::vector<std::size_t> messages;
    bool messageList = false; ///< Messages were added or put in front; all indexes may differ.
    bool subagents = false;
    bool status = false;

    /// Adds a row.
    void touch(std::size_t row);
    void merge(const ChatTranscriptChange& other);
    [[nodiscard]] bool isEmpty() const
    {
        return messages.empty() && !messageList && !subagents && !status;
    }

    bool operator==(const ChatTranscriptChange&) const = default;
};

/// Changed only by its own functions. A value: a copy shares its texts with the original and
/// nothing else. Copying is for tests and for history; a view reads a reference and follows the
/// changes.
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
    struct Child;
    class Reducer; ///< What each event does: see ChatTranscriptReducer.cpp.
    struct Place {
        std::size_t row;
        qsizetype block;
    };
    using Partials = std::map<qint64, ChatBlock>;

    [[nodiscard]] std::optional<std::size_t> rowOf(const QString& messageId) const;
    [[nodiscard]] std::optional<Place> findCall(const QString& callId);
    void indexRow(std::size_t row);
    void appendRow(ChatMessage message, ChatTranscriptChange& change);
    void ensureMessage(const QString& id, const QDateTime& date, ChatTranscriptChange& change);
    void rebuild(const QString& id, ChatTranscriptChange& change);
    [[nodiscard]] Partials::const_iterator firstShownPartial(const QString& id) const;
    void appendToPartial(Partials::iterator partial, const QString& text,
                         ChatTranscriptChange& change);
    [[nodiscard]] QString* shownText(Partials::const_iterator partial);
    void endStreaming(ChatTranscriptChange& change);
    void endAllStreaming(ChatTranscriptChange& change);
    void setOutcome(const QString& callId, ChatToolStatus callStatus,
                    const std::optional<QString>& text, const QList<ChatImage>* images,
                    ChatTranscriptChange& change);

    /// Blocks of each message from finished lines, by its id. `messages` shows the same lists as
    /// long as nothing else is to be shown.
    QHash<QString, QList<ChatBlock>> m_finished;
    Partials m_partial; ///< Blocks of the message being streamed, by index.
    std::optional<QString> m_streamingId;
    std::vector<Child> m_children;      ///< One transcript for each subagent that has spoken.
    QHash<QString, std::size_t> m_rows; ///< Message id to its last row.
    /// Tool call id to the last row that showed it once; where to look first.
    QHash<QString, std::size_t> m_callRows;
    bool m_mayStream = false; ///< False if no message has `isStreaming` set.
    /// The streamed message may hold a call twice, and only one of them has the outcome yet.
    bool m_needsRebuild = false;
};

/// What a subagent said, by the id of the call that started it.
struct ChatTranscript::Child {
    QString toolId;
    ChatTranscript transcript;
};

} // namespace Bralto
