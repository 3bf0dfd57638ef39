#include "DemoAgent/Behaviours/Subagent.h"

#include <QDateTime>
#include <QDir>

namespace DemoAgent {

using namespace std::chrono_literals;

namespace {

constexpr qint64 MillisecondsPerStep = 600;

QString outputFile(const Conversation& conversation, const QString& taskId)
{
    return conversation.store.path().chopped(QStringView(u".jsonl").size()) + u"/subagents/agent-" +
           taskId + u".jsonl";
}

QStringList matching(const QStringList& names, const QString& pattern)
{
    QStringList hits;
    for (const QString& name : names) {
        if (QDir::match(pattern, name))
            hits.append(name);
    }
    return hits;
}

} // namespace

Subagent::Subagent(Conversation& conversation, ToolUse use, Place place)
    : m_conversation(conversation)
    , m_use(std::move(use))
    , m_place(place)
    , m_taskId(makeId(QLatin1StringView("a")).left(17))
{
}

void Subagent::started() const
{
    tellTasks(true);
    QJsonObject line = taskLine("task_started");
    line.insert("is_backgrounded", m_place == Place::Background);
    line.insert("spawn_depth", 1);
    line.insert("task_type", "local_agent");
    line.insert("prompt", m_use.input.value("prompt"));
    m_conversation.out.send(line);
}

Task<> Subagent::work()
{
    const QJsonArray prompt{Wire::textBlock(m_use.input.value("prompt").toString())};
    sendLine(Wire::user(prompt));
    const QStringList names =
        QDir(m_conversation.folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot, QDir::Name);
    for (const char* pattern : {"*", "*.md"}) {
        co_await m_conversation.pace.pause(600ms);
        const ToolUse glob{makeId(QLatin1StringView("toolu_")), "Glob", {{"pattern", pattern}}, {}};
        progress(QString("Running Find %1").arg(QLatin1StringView(pattern)), glob.name);
        sendAssistant(Wire::toolBlock(glob));
        co_await m_conversation.pace.pause(600ms);
        const QStringList hits = matching(names, pattern);
        const ToolResult found{.content =
                                   hits.isEmpty() ? QString("Nothing found") : hits.join(u'\n'),
                               .isError = false,
                               .details = {}};
        sendLine(Wire::toolResult(glob.id, found));
    }
    co_await m_conversation.pace.pause(600ms);
    m_report = QString("I looked around: there are %1 entries in the folder.").arg(names.size());
    sendAssistant(Wire::textBlock(m_report));
}

void Subagent::ended(const QString& status, const QString& summary) const
{
    QJsonObject updated = taskLine("task_updated");
    updated.insert("patch", QJsonObject{{"status", status == u"stopped" ? "killed" : "completed"},
                                        {"end_time", QDateTime::currentMSecsSinceEpoch()}});
    m_conversation.out.send(updated);
    QJsonObject line = taskLine("task_notification");
    line.insert("status", status);
    line.insert("summary", summary);
    line.insert("summary_is_report", status == u"completed");
    line.insert("output_file", outputFile(m_conversation, m_taskId));
    line.insert("usage", usage());
    m_conversation.out.send(line);
    tellTasks(false);
}

ToolResult Subagent::result() const
{
    const QJsonArray content{Wire::textBlock(m_report)};
    return {.content = content,
            .isError = false,
            .details = QJsonObject{{"status", "completed"},
                                   {"agentId", m_taskId},
                                   {"agentType", "general-purpose"},
                                   {"content", content},
                                   {"totalTokens", m_tokens},
                                   {"totalToolUseCount", m_toolUses}}};
}

ToolResult Subagent::launched() const
{
    return {.content = QString(u"Async agent launched with id " + m_taskId + u'.'),
            .isError = false,
            .details = QJsonObject{{"isAsync", true},
                                   {"status", "async_launched"},
                                   {"agentId", m_taskId},
                                   {"outputFile", outputFile(m_conversation, m_taskId)}}};
}

void Subagent::progress(const QString& activity, const QString& tool)
{
    ++m_toolUses;
    m_tokens += 350;
    QJsonObject line = taskLine("task_progress");
    line.insert("description", activity);
    line.insert("usage", usage());
    line.insert("last_tool_name", tool);
    m_conversation.out.send(line);
}

void Subagent::sendAssistant(const QJsonObject& block)
{
    sendLine(Wire::assistant(Wire::assistantMessage(makeId(QLatin1StringView("msg_")),
                                                    m_conversation.settings.model, block,
                                                    QJsonValue::Null, {})));
}

void Subagent::sendLine(QJsonObject line)
{
    m_conversation.store.appendSidechain(
        m_taskId, {{"type", line.value("type")}, {"message", line.value("message")}});
    line.insert("parent_tool_use_id", m_use.id);
    line.insert("agent_id", m_taskId);
    line.insert("subagent_type", "general-purpose");
    m_conversation.out.send(line);
}

QJsonObject Subagent::taskLine(const char* subtype) const
{
    return {
        {"type", "system"},
        {"subtype", subtype},
        {"task_id", m_taskId},
        {"tool_use_id", m_use.id},
        {"description", m_use.input.value("description")},
        {"subagent_type", "general-purpose"},
    };
}

QJsonObject Subagent::usage() const
{
    return {{"total_tokens", m_tokens},
            {"tool_uses", m_toolUses},
            {"duration_ms", MillisecondsPerStep * m_toolUses}};
}

void Subagent::tellTasks(bool isRunning) const
{
    if (m_place == Place::Foreground)
        return;
    QJsonArray tasks;
    if (isRunning) {
        tasks.append(QJsonObject{{"task_id", m_taskId},
                                 {"task_type", "local_agent"},
                                 {"description", m_use.input.value("description")}});
    }
    m_conversation.out.send(
        {{"type", "system"}, {"subtype", "background_tasks_changed"}, {"tasks", tasks}});
}

} // namespace DemoAgent
