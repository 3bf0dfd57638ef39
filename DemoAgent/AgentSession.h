#pragma once

#include "DemoAgent/Conversation.h"
#include "DemoAgent/LineReader.h"
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
class AgentSession : public QObject {
    Q_OBJECT

public:
    /// `conversation` must outlive this object.
    AgentSession(Conversation& conversation, int input);
    ~AgentSession() override;

signals:
    /// The process shall end with this status; `message` goes to stderr.
    void ended(int status, const QString& message);

private:
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
    Task<> runTurn(std::vector<Prompt> prompts);
    Task<> runAnnouncedTurn(QString report);
    void turnIsDone();
    void closeTurn();

    void startJobs();
    Task<> superviseJob(BackgroundJob job);

    Conversation& m_conversation;
    LineReader m_reader;
    QSocketNotifier m_input;
    bool m_inputEnded = false;

    std::deque<Prompt> m_queue;
    std::unique_ptr<Turn> m_turn;
    std::optional<Task<>> m_work;
    bool m_turnIsDone = false;

    struct RunningJob {
        QString taskId;
        Task<> work;
    };
    std::vector<RunningJob> m_jobs;
};

} // namespace DemoAgent
