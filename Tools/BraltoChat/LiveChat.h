#pragma once

#include "LiveCommand.h"

#include "Chat/ChatLineReader.h"
#include "Chat/ClaudeChat.h"

#include <QObject>
#include <QSocketNotifier>

#include <vector>

namespace Bralto {

/// A real conversation without a window: commands come in as lines, everything that a view would
/// observe goes out as lines. Main thread.
class LiveChat final : public QObject {
    Q_OBJECT

public:
    /// Reads from `input` and writes to the standard output. `services` outlives this object.
    LiveChat(const QString& folder, const std::optional<QString>& sessionId,
             ClaudeChat::Services services, int input);

    /// Starts the agent and reads the first commands.
    void start();

signals:
    /// Everything is said and the agent has gone.
    void finished();

private:
    void observe();
    void readInput();
    void inputEnded();
    void obey(const QByteArray& line);
    void perform(const LiveCommands::Send& command);
    void perform(const LiveCommands::Respond& command);
    void perform(const LiveCommands::Answer& command);
    void perform(const LiveCommands::Interrupt& command);
    void perform(const LiveCommands::SetModel& command);
    void perform(const LiveCommands::SetEffort& command);
    void perform(const LiveCommands::SetMode& command);
    void perform(const LiveCommands::SetRemoteControl& command);
    void perform(const LiveCommands::Control& command);
    void perform(const LiveCommands::Switch& command);
    void perform(const LiveCommands::Stop& command);
    void perform(const LiveCommands::Quit& command);
    void reportTranscript(const ChatTranscriptChange& change);
    void reportRow(std::size_t row);
    void quitIfNothingFollows();
    void quit();

    ClaudeChat m_chat;
    int m_input;
    QSocketNotifier m_notifier;
    ChatLineReader m_lines;
    JsonReader m_json;
    std::vector<QByteArray> m_told; ///< The last line about each row.
    int m_openRequests = 0;         ///< Control requests whose reply is awaited.
    bool m_hasInputEnded = false;
    bool m_isQuitting = false;
};

} // namespace Bralto
