#pragma once

#include "Chat/AgentProcess.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>

#include <vector>

namespace Bralto {

/// What happened to one started child, and what it can be made to say. Outlives the handle.
struct FakeAgent {
    AgentLaunch launch;
    AgentPipes pipes;
    QList<QByteArray> lines; ///< What was written to its input, a line each, without line feeds.
    QStringList orders;      ///< "interrupt", "terminate", "kill", "closeInput", in order.
    bool isRunning = true;
    bool isReleased = false; ///< The handle has gone.

    /// The agent writes bytes, which arrive at once.
    void say(const QByteArray& bytes)
    {
        pipes.output(std::string_view(bytes.constData(), std::size_t(bytes.size())));
        QCoreApplication::sendPostedEvents();
    }
    void sayLine(const QByteArray& json) { say(json + '\n'); }
    void complain(const QByteArray& bytes)
    {
        pipes.errors(std::string_view(bytes.constData(), std::size_t(bytes.size())));
    }
    /// The agent exits, in the order in which a real one is reported.
    void exit(int status)
    {
        isRunning = false;
        pipes.ended(status);
        pipes.outputEnded();
        QCoreApplication::sendPostedEvents();
    }

    [[nodiscard]] QJsonValue written(qsizetype index) const
    {
        return QJsonDocument::fromJson(lines.value(index)).object();
    }
    /// The last line of the given "type" and, for a control request, "subtype"; undefined if none.
    [[nodiscard]] QJsonValue lastWritten(const QString& type, const QString& subtype = {}) const
    {
        for (qsizetype index = lines.size() - 1; index >= 0; --index) {
            QJsonValue line = written(index);
            if (line["type"] == type &&
                (subtype.isEmpty() || line["request"]["subtype"] == subtype))
                return line;
        }
        return QJsonValue::Undefined;
    }
    [[nodiscard]] qsizetype count(const QString& type, const QString& subtype = {}) const
    {
        qsizetype result = 0;
        for (qsizetype index = 0; index < lines.size(); ++index) {
            const QJsonValue line = written(index);
            result += line["type"] == type &&
                      (subtype.isEmpty() || line["request"]["subtype"] == subtype);
        }
        return result;
    }
};

/// Starts children that do what a test says.
class FakeAgentLauncher final : public AgentLauncher {
public:
    std::vector<std::shared_ptr<FakeAgent>> agents; ///< In the order of their start.
    QString failure;                                ///< Why a launch fails, empty if it doesn't.

    [[nodiscard]] FakeAgent& agent() const { return *agents.back(); }

    Expected<std::shared_ptr<AgentProcess>, QString> launch(const AgentLaunch& launch,
                                                            AgentPipes pipes) override
    {
        if (!failure.isEmpty())
            return Unexpected{failure};
        auto agent = std::make_shared<FakeAgent>();
        agent->launch = launch;
        agent->pipes = std::move(pipes);
        agents.push_back(agent);
        return std::shared_ptr<AgentProcess>(
            std::make_shared<Process>(agent, qint64(1000 + agents.size())));
    }

private:
    class Process final : public AgentProcess {
    public:
        Process(std::shared_ptr<FakeAgent> agent, qint64 id)
            : m_agent(std::move(agent))
            , m_id(id)
        {
        }
        ~Process() override { m_agent->isReleased = true; }

        [[nodiscard]] bool isRunning() const override { return m_agent->isRunning; }
        [[nodiscard]] qint64 processId() const override { return m_id; }
        void write(QByteArray bytes) override
        {
            for (const QByteArray& line : bytes.split('\n')) {
                if (!line.isEmpty())
                    m_agent->lines.append(line);
            }
        }
        void closeInput() override { m_agent->orders.append("closeInput"); }
        void interrupt() override { m_agent->orders.append("interrupt"); }
        void terminate() override { m_agent->orders.append("terminate"); }
        void kill() override { m_agent->orders.append("kill"); }

    private:
        std::shared_ptr<FakeAgent> m_agent;
        qint64 m_id;
    };
};

} // namespace Bralto
