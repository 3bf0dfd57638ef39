#pragma once

#include <QJsonObject>
#include <QString>

#include <optional>

namespace DemoAgent {

/// What an earlier process has left of a conversation.
struct StoredConversation {
    int turns = 0;
    QString firstPrompt;
    QString lastPrompt;
    /// Of all texts together.
    qint64 characters = 0;
    /// The uuid that the next line names as its parent.
    QString lastUuid;
};

/// The conversation's file, where the real agent keeps it. Created by the first line, mode 0600.
/// A line that can't be written is lost without a word, as the conversation goes on regardless.
class ConversationStore {
public:
    ConversationStore(const QString& home, QString folder, QString sessionId);

    [[nodiscard]] QString path() const { return m_path; }
    [[nodiscard]] bool exists() const;
    /// Reads the file and goes on at its end; absent if it is not there. Lines that are no JSON
    /// object are skipped.
    std::optional<StoredConversation> load();

    /// `message` is the API's message object. Returns the line's uuid.
    QString appendUser(const QJsonObject& message, const QJsonObject& more = {});
    QString appendAssistant(const QJsonObject& message, const QJsonObject& more = {});
    /// A line that is no part of the chain of messages.
    void appendNote(QJsonObject line);
    /// A line of a subagent's own file, beside the conversation.
    void appendSidechain(const QString& agentId, QJsonObject line);

    /// `$HOME/.claude/projects/<folder>`: all but ASCII letters and digits become "-".
    [[nodiscard]] static QString projectFolder(const QString& home, const QString& folder);

private:
    QString append(QJsonObject line, const QJsonObject& more);
    [[nodiscard]] QJsonObject signedLine(QJsonObject line, const QString& parent) const;
    static void write(const QString& path, const QJsonObject& line);

    QString m_folder;
    QString m_sessionId;
    QString m_path;
    QString m_lastUuid;
};

/// The texts of a user line's content: a string, or the text blocks joined by a line feed.
[[nodiscard]] QString textOf(const QJsonValue& content);

} // namespace DemoAgent
