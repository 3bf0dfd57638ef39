#pragma once

#include "DemoAgent/Conversation.h"
#include "DemoAgent/LineReader.h"
#include "DemoAgent/Recorder.h"
#include "DemoAgent/Script/ScriptPlayer.h"
#include "DemoAgent/Turn.h"

#include <QObject>
#include <QSocketNotifier>

#include <deque>
#include <memory>
#include <optional>
#include <vector>

namespace DemoAgent {

/// One process's side of the pipes: takes the app's lines, runs one turn at a time, queues what
/// comes meanwhile, and ends when the input has ended and all work is done.
class AgentSession : public QObject, private ScriptHost {
    Q_OBJECT

public:
    /// Both must outlive this object.
    AgentSession(Conversation& conversation, Recorder& recorder, int input);
    ~AgentSession() override;

    /// Plays a script before anything else; `folder` is where its file lies. Call it before the
    /// event loop runs.
    void playScript(std::vector<ScriptStep> steps, const QString& folder);

signals:
    /// The process shall end with this status; `message` goes to stderr.
    void ended(int status, const QString& message);

private:
    void runTurn(const Prompt& prompt, Later<bool>& ended) override;
    void stopReading() override;
    void endProcess(int status) override;

    void readInput();
    void takeLine(const QByteArray& bytes);
    void dispatch(const QJsonObject& line);
    void endInput();

    void answerControl(const QString& requestId, const QJsonObject& request);
    void interrupt(const QString& requestId);
    void stopTask(const QString& requestId, const QString& taskId);

    void considerNext();
    void startTurn(std::vector<Prompt> prompts);
    void startAnnouncedTurn();
    Task<> answer(std::vector<Prompt> prompts);
    Task<> announce(QString report);
    void turnIsDone();
    void closeTurn();

    void startJobs();
    Task<> superviseJob(BackgroundJob job);

    Conversation& m_conversation;
    Recorder& m_recorder;
    LineReader m_reader;
    QSocketNotifier m_input;
    bool m_inputEnded = false;

    std::deque<Prompt> m_queue;
    std::unique_ptr<Turn> m_turn;
    std::optional<Task<>> m_work;
    bool m_turnIsDone = false;

    std::unique_ptr<ScriptPlayer> m_script;
    /// Of a turn that the script has asked for.
    Later<bool>* m_scriptTurn = nullptr;

    struct RunningJob {
        QString taskId;
        Task<> work;
    };
    std::vector<RunningJob> m_jobs;
};

} // namespace DemoAgent
