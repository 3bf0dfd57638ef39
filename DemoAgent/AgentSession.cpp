#include "DemoAgent/AgentSession.h"

#include "DemoAgent/Behaviours/Behaviours.h"
#include "DemoAgent/ControlRequests.h"

#include <QJsonDocument>
#include <QMetaObject>

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

namespace DemoAgent {

AgentSession::AgentSession(Conversation& conversation, Recorder& recorder, int input)
    : m_conversation(conversation)
    , m_recorder(recorder)
    , m_input(input, QSocketNotifier::Read)
{
    connect(&m_input, &QSocketNotifier::activated, this, &AgentSession::readInput);
}

AgentSession::~AgentSession() = default;

void AgentSession::playScript(std::vector<ScriptStep> steps, const QString& folder)
{
    const auto goOnWithout = [this] {
        // Queued, as the player's own code still runs.
        QMetaObject::invokeMethod(
            this,
            [this] {
                const auto left = std::exchange(m_script, {})->leftOver();
                for (const QJsonObject& line : left)
                    dispatch(line);
                considerNext();
            },
            Qt::QueuedConnection);
    };
    m_script = std::make_unique<ScriptPlayer>(
        ScriptContext{m_conversation, *this, m_recorder, folder}, std::move(steps), goOnWithout);
    QMetaObject::invokeMethod(
        this, [this] { m_script->start(); }, Qt::QueuedConnection);
}

void AgentSession::runTurn(const Prompt& prompt, Later<bool>& ended)
{
    m_scriptTurn = &ended;
    startTurn({prompt});
}

void AgentSession::stopReading()
{
    m_input.setEnabled(false);
}

void AgentSession::endProcess(int status)
{
    emit ended(status, {});
}

void AgentSession::readInput()
{
    std::array<char, 65536> buffer;
    const ssize_t size = ::read(static_cast<int>(m_input.socket()), buffer.data(), buffer.size());
    if (size < 0 && (errno == EINTR || errno == EAGAIN))
        return;
    if (size <= 0) {
        endInput();
        return;
    }
    m_reader.feed(QByteArray(buffer.data(), size));
    QByteArray line;
    while (m_reader.next(line))
        takeLine(line);
}

void AgentSession::endInput()
{
    m_input.setEnabled(false);
    if (const QByteArray rest = m_reader.finish(); !rest.isEmpty())
        takeLine(rest);
    m_recorder.inputEnded();
    m_inputEnded = true;
    m_conversation.requests.close();
    if (m_script)
        m_script->inputEnded();
    considerNext();
}

void AgentSession::takeLine(const QByteArray& bytes)
{
    if (bytes.trimmed().isEmpty())
        return;
    m_recorder.arrived(bytes);
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &error);
    if (error.error != QJsonParseError::NoError) {
        emit ended(1, u"Error parsing streaming input line: " + error.errorString());
        return;
    }
    dispatch(document.object());
}

void AgentSession::dispatch(const QJsonObject& line)
{
    if (m_script && m_script->takes(line))
        return;
    const QString type = line.value("type").toString();
    if (type == u"user") {
        m_queue.push_back(Prompt::fromContent(line.value("message")["content"]));
        considerNext();
    } else if (type == u"control_request") {
        answerControl(line.value("request_id").toString(), line.value("request").toObject());
    } else if (type == u"control_response") {
        m_conversation.requests.deliver(line.value("response").toObject());
    }
}

void AgentSession::answerControl(const QString& requestId, const QJsonObject& request)
{
    const QString subtype = request.value("subtype").toString();
    if (subtype == u"interrupt") {
        interrupt(requestId);
        return;
    }
    if (subtype == u"stop_task") {
        stopTask(requestId, request.value("task_id").toString());
        return;
    }
    const ControlReply reply = ControlRequests::answer(request, m_conversation);
    for (const QJsonObject& line : reply.before)
        m_conversation.out.send(line);
    m_conversation.out.send(reply.error.isEmpty() ? Wire::reply(requestId, reply.response)
                                                  : Wire::replyError(requestId, reply.error));
    for (const QJsonObject& line : reply.after)
        m_conversation.out.send(line);
}

void AgentSession::interrupt(const QString& requestId)
{
    const bool isRunning = m_turn && !m_turnIsDone;
    if (isRunning)
        m_turn->withdrawRequest();
    m_conversation.out.send(Wire::reply(requestId, QJsonObject{{"still_queued", QJsonArray()}}));
    if (!isRunning)
        return;
    m_work.reset();
    m_turn->abort();
    turnIsDone();
}

void AgentSession::stopTask(const QString& requestId, const QString& taskId)
{
    const auto found = std::ranges::find(m_jobs, taskId, &RunningJob::taskId);
    if (found == m_jobs.end()) {
        m_conversation.out.send(Wire::replyError(requestId, u"No task with id " + taskId));
        return;
    }
    m_jobs.erase(found);
    m_conversation.out.send(Wire::reply(requestId, QJsonObject()));
    considerNext();
}

void AgentSession::considerNext()
{
    if (m_turn || m_script)
        return;
    if (!m_queue.empty()) {
        std::vector<Prompt> prompts(m_queue.begin(), m_queue.end());
        m_queue.clear();
        for (const Prompt& prompt : prompts)
            m_conversation.notePrompt(prompt.text);
        startTurn(std::move(prompts));
    } else if (!m_conversation.announcements.isEmpty()) {
        startAnnouncedTurn();
    } else if (m_inputEnded && m_jobs.empty()) {
        emit ended(m_conversation.lastResultFailed ? 1 : 0, {});
    }
}

void AgentSession::startTurn(std::vector<Prompt> prompts)
{
    m_turn = std::make_unique<Turn>(m_conversation);
    m_turn->begin(prompts);
    m_turn->sendInit();
    m_work = answer(std::move(prompts));
    m_work->start();
}

void AgentSession::startAnnouncedTurn()
{
    m_turn = std::make_unique<Turn>(m_conversation);
    m_turn->setOrigin({{"kind", "task-notification"}});
    m_turn->begin({});
    m_turn->sendInit();
    m_work = announce(m_conversation.announcements.takeFirst());
    m_work->start();
}

Task<> AgentSession::answer(std::vector<Prompt> prompts)
{
    for (const Prompt& prompt : prompts)
        co_await Behaviours::answer(*m_turn, prompt);
    m_turn->finish();
    turnIsDone();
}

Task<> AgentSession::announce(QString report)
{
    QString words = u"The helper in the background has ended. " + report;
    co_await m_turn->say(words);
    m_turn->finish();
    turnIsDone();
}

// The turn's own code may still run, so it is put away once the event loop turns.
void AgentSession::turnIsDone()
{
    m_turnIsDone = true;
    QMetaObject::invokeMethod(this, &AgentSession::closeTurn, Qt::QueuedConnection);
}

void AgentSession::closeTurn()
{
    m_work.reset();
    m_turn.reset();
    m_turnIsDone = false;
    m_conversation.store.appendNote(
        {{"type", "last-prompt"}, {"lastPrompt", m_conversation.lastPrompt.left(200)}});
    startJobs();
    if (m_scriptTurn)
        std::exchange(m_scriptTurn, nullptr)->bring(true);
    considerNext();
}

void AgentSession::startJobs()
{
    auto coming = std::exchange(m_conversation.comingJobs, {});
    for (BackgroundJob& job : coming) {
        const QString taskId = job.taskId;
        m_jobs.push_back({taskId, superviseJob(std::move(job))});
        m_jobs.back().work.start();
    }
}

Task<> AgentSession::superviseJob(BackgroundJob job)
{
    co_await job.work;
    QMetaObject::invokeMethod(
        this,
        [this, taskId = job.taskId] {
            std::erase_if(m_jobs, [&](const RunningJob& ended) { return ended.taskId == taskId; });
            considerNext();
        },
        Qt::QueuedConnection);
}

} // namespace DemoAgent
