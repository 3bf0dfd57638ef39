#pragma once

/// @file
/// What the user is about to say in one pane, and everything that the keyboard does around it:
///
///     field ─ text, cursor, keys ─> ChatDraft ─ requests ─> ClaudeChat
///     ClaudeChat ─ commands, cards, state ─> ChatDraft ─ changes ─> views

#include "Chat/ChatFileIndex.h"
#include "Chat/ChatQuestionFlow.h"
#include "Chat/ClaudeChat.h"

#include <QObject>

namespace Bralto {

/// What the composer needs of commands. Only those are offered that the pane can carry out: the
/// prompts, and the native commands that need no panel.
namespace ChatComposerCommands {

[[nodiscard]] QList<ChatCommand> offered(const QList<ChatCommand>& commands);

/// Whether Return in the palette writes the command and waits for its arguments.
[[nodiscard]] bool waitsForArguments(const ChatCommand& command);

} // namespace ChatComposerCommands

/// Where a word that begins with "@" lies in a text, in UTF-16 units.
struct ChatMentionRange {
    qsizetype start = 0; ///< Of the "@".
    qsizetype end = 0;   ///< The cursor.

    /// The mention that ends at `cursor`, if the word there is one.
    [[nodiscard]] static std::optional<ChatMentionRange> in(const QString& text, qsizetype cursor);

    bool operator==(const ChatMentionRange&) const = default;
};

/// The composer's state. It outlives the view, so that a pane keeps what was typed. Main thread.
class ChatDraft final : public QObject {
    Q_OBJECT

public:
    static constexpr qsizetype MentionLimit = 8;
    static constexpr qsizetype PaletteLimit = 60;

    explicit ChatDraft(QObject* parent = nullptr);

    /// The draft of `chat`, which lives as long as the chat and carries out what it asks for.
    [[nodiscard]] static ChatDraft& of(ClaudeChat& chat);

    [[nodiscard]] const QString& text() const { return m_text; }
    [[nodiscard]] qsizetype cursor() const { return m_cursor; }
    [[nodiscard]] const QList<ChatAttachment>& attachments() const { return m_attachments; }
    [[nodiscard]] bool canSend() const;

    [[nodiscard]] bool isMentionOpen() const { return !m_mentionRows.isEmpty(); }
    [[nodiscard]] const QStringList& mentionRows() const { return m_mentionRows; }
    [[nodiscard]] qsizetype mentionIndex() const { return m_mentionIndex; }

    [[nodiscard]] bool isPaletteOpen() const { return !m_paletteRows.isEmpty(); }
    [[nodiscard]] const QList<ChatCommand>& paletteRows() const { return m_paletteRows; }
    [[nodiscard]] qsizetype paletteIndex() const { return m_paletteIndex; }

    [[nodiscard]] const std::optional<ChatPermission>& permission() const { return m_permission; }
    /// 0 allows, 1 refuses.
    [[nodiscard]] int permissionHighlight() const { return m_permissionHighlight; }
    [[nodiscard]] const std::optional<ChatQuestionFlow>& questionFlow() const { return m_flow; }

    // What the field and the cards report.
    void setText(const QString& text, qsizetype cursor);
    /// Whether the key was taken. One that wasn't does in the field what it always does.
    bool press(const ChatKey& key);
    /// The same for a key that was pressed in a card itself: lists and field have no part in it.
    bool pressInCard(const ChatKey& key);
    void send();
    /// Ends what the agent does.
    void interrupt();
    void clear();
    /// Adds words at the end, parted by one blank from what is there.
    void append(const QString& text);
    void attach(const QList<ChatAttachment>& attachments);
    void removeAttachment(const QString& id);
    /// Replaces the "@" word at the cursor, or appends.
    void insertMention(const QString& path);
    void takeCommand(const ChatCommand& command);
    void closeLists();
    void respond(bool allow);
    void choose(const ChatQuestionFlow::Row& row);
    void setOtherAnswer(const QString& text);
    void highlightQuestionRow(qsizetype row);

    // What the conversation and the project report.
    void setCommands(const QList<ChatCommand>& commands);
    void setFiles(ChatFileIndex::List files);
    void setPermission(const std::optional<ChatPermission>& permission);
    void setQuestion(const std::optional<ChatQuestion>& question);
    void setBusy(bool busy);

signals:
    /// The draft put another text or cursor into the field.
    void textReplaced(const QString& text, qsizetype cursor);
    void canSendChanged(bool canSend);
    void attachmentsChanged();
    void listsChanged();
    void permissionChanged();
    void questionChanged();
    /// A word with "@" began: the list of files is wanted.
    void filesRequested();

    void sendRequested(const QString& text, const QList<Bralto::ChatAttachment>& attachments);
    void modelRequested(const QString& value);
    void effortRequested(const QString& level);
    void permissionModeRequested(const QString& mode);
    void newConversationRequested();
    void respondRequested(const QString& permissionId, bool allow);
    void answerRequested(const QString& questionId, const QMap<QString, QString>& answers);
    void interruptRequested();

private:
    void replaceText(const QString& text, qsizetype cursor);
    void updateLists();
    bool pressInPalette(const ChatKey& key);
    bool pressInMentions(const ChatKey& key);
    bool pressInPermission(const ChatKey& key);
    bool follow(ChatQuestionFlow::Outcome outcome);
    bool runNative(const ChatCommandRoute& route);
    void signalCanSend(bool before);

    QString m_text;
    qsizetype m_cursor = 0;
    QList<ChatAttachment> m_attachments;

    QList<ChatCommand> m_commands;
    ChatFileIndex::List m_files;
    std::optional<QString>
        m_mention; ///< The query; a list that was closed stays so until it differs.
    std::optional<QString> m_palette;
    bool m_isListClosed = false;
    QStringList m_mentionRows;
    qsizetype m_mentionIndex = 0;
    QList<ChatCommand> m_paletteRows;
    qsizetype m_paletteIndex = 0;

    std::optional<ChatPermission> m_permission;
    int m_permissionHighlight = 0;
    std::optional<ChatQuestionFlow> m_flow;
    bool m_isBusy = false;
};

} // namespace Bralto
