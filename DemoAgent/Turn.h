#pragma once

#include "DemoAgent/Conversation.h"

#include <QElapsedTimer>

#include <memory>
#include <vector>

namespace DemoAgent {

/// The user's answer to a permission or a question.
struct Decision {
    bool isAllowed = true;
    /// What the tool runs with, which the user may have changed.
    QJsonObject input;
    /// Why not.
    QString message;
};

/// One turn under way: what a behaviour says and does goes through here and comes out as the lines
/// of the protocol, in their order. Text and thinking open a message by themselves; a tool call
/// ends it, and what is said after the tool's result stands in a new one.
class Turn {
public:
    explicit Turn(Conversation& conversation)
        : m_conversation(conversation)
    {
    }

    [[nodiscard]] Conversation& conversation() { return m_conversation; }

    /// Starts the clock and stores the prompts.
    void begin(const std::vector<Prompt>& prompts);
    /// `system/init`, with which the app sees the turn begin.
    void sendInit();

    /// Streams a text block in small pieces.
    Task<> say(QString text);
    /// The same in parts: what is added streams as one piece, with a pause behind it.
    Task<> openText();
    Task<> addText(QString piece, std::chrono::milliseconds pause);
    /// Nothing if no block is open.
    void endText();
    Task<> think(QString thinking);

    /// Streams a tool call as the next block of the message. An interactive tool asks at once, as
    /// the real one does while its block is still open, with `asked` as the request's input.
    Task<> streamTool(ToolUse use, Permission permission, QJsonObject asked);
    /// Ends the message that ends in tool calls. Nothing if none is open.
    void endMessageForTools();
    /// Waits for the user's decision, if the mode asks for one.
    Task<Decision> decide(ToolUse use, Permission permission);
    /// All three for a single call. The tool's result must follow.
    Task<Decision> call(ToolUse use, Permission permission);
    void toolResult(const ToolUse& use, const ToolResult& result);
    /// The result of a call that the user refused.
    void toolRefused(const ToolUse& use, const Decision& decision);

    /// An answer that no model has made: an assistant line at once, and a result without a turn.
    void answerSynthetically(const QString& text);

    /// Ends the message and sends the result.
    void finish();
    /// Breaks off wherever the turn is, and sends the lines that tell so.
    void abort();

    /// Sends a withdrawal of the request that is open, if one is.
    void withdrawRequest();
    /// What started the turn, if it wasn't the user: the result's `origin`.
    void setOrigin(const QJsonObject& origin) { m_origin = origin; }
    [[nodiscard]] qint64 milliseconds() const { return m_clock.elapsed(); }

private:
    struct OpenMessage {
        QString id;
        QString model;
        Usage usage;
        int blocks = 0;
        qint64 characters = 0;
        /// The block that streams just now as it was opened, empty between blocks.
        QJsonObject streaming;
        /// What has been streamed of its text or thinking.
        QString streamed;
        std::vector<QJsonObject> finished;
    };

    void ensureMessage();
    void openBlock(const QJsonObject& block);
    /// The open block with all that has been streamed; empty if none is open or it is a tool call.
    [[nodiscard]] QJsonObject streamedBlock() const;
    void sendDelta(const QJsonObject& delta, qsizetype characters);
    void sendAssistant(const QJsonObject& block);
    void closeBlock(const QJsonObject& block);
    void closeMessage(const QJsonValue& stopReason);
    void ask(const ToolUse& use, const QJsonObject& input);
    void refuseOpenTools();
    void abortMessage();
    void notify(const QString& text);
    void sendResult(QJsonObject fields);
    void stream(const QJsonObject& line);

    Conversation& m_conversation;
    QElapsedTimer m_clock;
    std::unique_ptr<OpenMessage> m_message;
    std::unique_ptr<PendingRequest> m_request;
    /// Called, and without a result so far.
    std::vector<ToolUse> m_openTools;
    QJsonArray m_denials;
    QJsonObject m_origin;
    QString m_lastText;
    int m_calls = 0;
    bool m_isSynthetic = false;
};

/// A tool call with a new id.
[[nodiscard]] ToolUse makeToolUse(const QString& name, const QJsonObject& input,
                                  const QString& description = {});

} // namespace DemoAgent
