#pragma once

#include "Base/Clock.h"
#include "Base/Expected.h"
#include "Base/Scheduler.h"
#include "Chat/AgentProcess.h"
#include "Chat/ChatHost.h"
#include "Chat/ChatRemoteControl.h"
#include "Chat/ChatTranscript.h"

#include <QObject>
#include <QVariantMap>

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <vector>

namespace Bralto {

class AgentOutput;
class MainThreadDoor;

/// Why a control request failed, already in the user's words.
struct ChatControlError {
    QString message;

    bool operator==(const ChatControlError&) const = default;
};

/// What a conversation does right now.
struct ChatState {
    enum class Kind { Idle, Starting, Working, Waiting, Failed };

    Kind kind = Kind::Idle;
    QString message; ///< Of `Failed` only.

    bool operator==(const ChatState&) const = default;
};

/// The last catalogue that the agent reported for each folder, so that a second conversation of a
/// project offers its commands before its own agent has answered.
class ChatCommandMemory {
public:
    [[nodiscard]] const QList<ChatCommand>& commands(const QString& folder) const;
    void remember(const QString& folder, const QList<ChatCommand>& commands);

private:
    QHash<QString, QList<ChatCommand>> m_commands;
};

/// One live conversation. It owns the agent's process, turns its lines into a transcript, and
/// carries out everything that the user does. The process is disposable, the conversation is not:
/// a new process resumes it from the agent's own file.
///
/// Lives on the main thread. Output is cut and decoded on the process's threads; a batch hops to
/// the main thread, where `generation` decides whether it still counts.
class ClaudeChat final : public QObject {
    Q_OBJECT

public:
    struct Services {
        ChatHost& host;
        AgentLauncher& launcher;
        Scheduler& scheduler;
        const Clock& clock;
        ChatCommandMemory& commandMemory;
    };

    using Reply = std::function<void(Expected<QByteArray, ChatControlError>)>;

    /// A conversation in `folder`: the stored one of `sessionId`, or a new one. Everything in
    /// `services` outlives this object.
    ClaudeChat(QString folder, std::optional<QString> sessionId, Services services,
               QObject* parent = nullptr);
    ~ClaudeChat() override;

    [[nodiscard]] const QString& id() const
    {
        return m_id;
    } ///< A UUID in lower case; the pane's name.
    [[nodiscard]] const QString& sessionId() const { return m_sessionId; }
    [[nodiscard]] const QString& folder() const { return m_folder; }
    [[nodiscard]] const ChatState& state() const { return m_state; }
    [[nodiscard]] const std::optional<ChatQuestion>& pendingQuestion() const
    {
        return m_pendingQuestion;
    }
    [[nodiscard]] const std::optional<ChatPermission>& pendingPermission() const
    {
        return m_pendingPermission;
    }
    [[nodiscard]] const QString& title() const { return m_title; }
    [[nodiscard]] bool isLoadingHistory() const { return m_isLoadingHistory; }
    [[nodiscard]] const QList<ChatCommand>& commands() const { return m_commands; }
    [[nodiscard]] const QList<ChatModelOption>& models() const { return m_models; }
    [[nodiscard]] const std::optional<QString>& chosenModel() const { return m_chosenModel; }
    [[nodiscard]] const ChatRemoteControl& remoteControl() const { return m_remoteControl; }
    [[nodiscard]] const ChatTranscript& transcript() const { return m_transcript; }
    [[nodiscard]] const std::optional<QString>& plan() const { return m_plan; }
    /// The last process ended before it said anything because there is no agent on this computer.
    [[nodiscard]] bool isAgentMissing() const { return m_isAgentMissing; }
    [[nodiscard]] bool isRunning() const;
    [[nodiscard]] qint64 processId() const; ///< 0 without a process.

    /// Starts the agent if it doesn't run; whether one runs afterwards.
    enum class Turn { No, Yes };
    bool launchIfNeeded(Turn turn);

    void send(const QString& text, const QList<ChatAttachment>& attachments = {});
    void respond(const QString& permissionId, bool allow);
    void answer(const QString& questionId, const QMap<QString, QString>& answers);
    void interrupt();
    void stop();
    /// `stop`, then waits until the process has gone, five seconds at the most, and kills it then.
    void stopAndWait(std::function<void()> done);
    /// Another conversation in this pane: the stored one, or a new one.
    void switchSession(const std::optional<QString>& sessionId);

    void setModel(const QString& value);
    void setEffort(const QString& level);
    void setPermissionMode(const QString& mode);
    void setRemoteControl(bool on);
    void refreshSettings();

    /// Sends a control request; `reply` is called once, on the main thread, unless this object is
    /// destroyed first, and never before this returns.
    void control(const QString& subtype, const QVariantMap& fields, std::chrono::seconds timeout,
                 Reply reply);

    /// Adds a line of the program's own to the transcript.
    void note(const QString& text);

    /// The title that a turn's text gives.
    [[nodiscard]] static QString titleFrom(const QString& text);
    /// What the login shell runs.
    [[nodiscard]] static QString script(const QString& baseCommand, const QStringList& flags);

signals:
    void stateChanged(const Bralto::ChatState& state);
    void sessionIdChanged(const QString& sessionId);
    void pendingQuestionChanged();
    void pendingPermissionChanged();
    void titleChanged(const QString& title);
    void isLoadingHistoryChanged(bool loading);
    void commandsChanged();
    void modelsChanged();
    void chosenModelChanged();
    void remoteControlChanged();
    void planChanged();
    void agentMissingChanged(bool missing);
    /// At the end of each batch of lines, and before each change of state within it.
    void transcriptChanged(const Bralto::ChatTranscriptChange& change);
    /// Another conversation took the place of the old one.
    void transcriptReplaced();
    /// The turn is over and nothing is queued.
    void turnEnded();

private:
    /// A control request in flight.
    struct PendingReply {
        Reply reply;
        quint64 timeout = 0;
    };
    /// A process that was stopped and that somebody waits for.
    struct Retiring {
        std::shared_ptr<AgentProcess> process;
        std::shared_ptr<AgentOutput> output;
        quint64 timeout = 0;
        std::function<void()> done;
    };

    // Launching (ClaudeChatLaunch.cpp)
    [[nodiscard]] AgentLaunch agentLaunch() const;
    [[nodiscard]] QStringList agentFlags() const;
    void write(const QByteArray& line);
    void takeOutput(int generation, const std::shared_ptr<AgentOutput>& output);
    void processEnded();
    void letGoOfProcess();
    void finishRetiring(const AgentOutput* output);
    void loadHistory();
    void takeHistory(int load, std::optional<ChatTranscript> history);

    // Events (ClaudeChatEvents.cpp)
    void handle(const std::vector<ChatEvent>& events);
    void take(const ChatEvents::Initialized& event);
    void take(const ChatEvents::StreamStart& event);
    void take(const ChatEvents::Assistant& event);
    void take(const ChatEvents::RateLimits& event);
    void take(const ChatEvents::Question& event);
    void take(const ChatEvents::Permission& event);
    void take(const ChatEvents::UnsupportedRequest& event);
    void take(const ChatEvents::CancelledRequest& event);
    void take(const ChatEvents::Result& event);
    void take(const ChatEvents::Capabilities& event);
    void take(const ChatEvents::Commands& event);
    void take(const ChatEvents::RemoteControl& event);
    void take(const ChatEvents::ControlResponse& event);
    template <typename Event>
    void take(const Event& event)
    {
        change(m_transcript.apply(event));
    }
    void takeActivity(const ChatEvent& event);

    // Control requests and settings (ClaudeChatControl.cpp)
    void finishReply(const QString& requestId, const Expected<QByteArray, ChatControlError>& reply);
    void failReplies();
    void takeSettings(const QByteArray& reply);
    void takeRemoteControlReply(bool on, const Expected<QByteArray, ChatControlError>& reply);
    void changeStatus(const std::function<void(ChatSessionInfo&)>& alter);

    // What is observed: compared, then stored, then signalled.
    void setState(const ChatState& state);
    void setState(ChatState::Kind kind) { setState(ChatState{kind, {}}); }
    void setPendingQuestion(std::optional<ChatQuestion> question);
    void setPendingPermission(std::optional<ChatPermission> permission);
    void setTitle(const QString& title);
    void setLoadingHistory(bool loading);
    void setCommands(const QList<ChatCommand>& commands);
    void setChosenModel(std::optional<QString> value);
    void updateRemoteControl(const ChatRemoteControl& remoteControl);
    void endRemoteControl();
    void setAgentMissing(bool missing);
    [[nodiscard]] static QString untitled(); ///< The title before the first turn.
    [[nodiscard]] static QString newUuid();
    /// Adds to what `transcriptChanged` will tell, at once or at the end of the batch.
    void change(const ChatTranscriptChange& change);
    void publish();

    Services m_services;
    QString m_id;
    QString m_sessionId;
    QString m_folder;
    ChatState m_state;
    std::optional<ChatQuestion> m_pendingQuestion;
    std::optional<ChatPermission> m_pendingPermission;
    QString m_title;
    bool m_isLoadingHistory = false;
    QList<ChatCommand> m_commands;
    QList<ChatModelOption> m_models;
    std::optional<QString> m_chosenModel;
    std::optional<QString> m_plan;
    ChatRemoteControl m_remoteControl;
    ChatTranscript m_transcript;
    bool m_isAgentMissing = false;

    std::shared_ptr<MainThreadDoor> m_door;
    std::shared_ptr<AgentProcess> m_process;
    std::shared_ptr<AgentOutput> m_output; ///< Of `m_process`.
    std::vector<Retiring> m_retiring;
    int m_generation = 0;      ///< Raised by every launch and every stop.
    int m_historyLoad = 0;     ///< Raised by every load of a stored conversation.
    QByteArray m_pendingInput; ///< The tool input of the open question.
    bool m_isInterrupting = false;
    std::map<QString, PendingReply> m_replies; ///< By request id.

    bool m_isInBatch = false;
    bool m_turnEnded = false;           ///< In this batch.
    ChatTranscriptChange m_batchChange; ///< Not told yet.
};

} // namespace Bralto
