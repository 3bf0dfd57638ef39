#include "DemoAgent/Reports.h"

#include "DemoAgent/Models.h"

#include <algorithm>

namespace DemoAgent::Reports {

namespace {

constexpr qint64 PromptTokens = 3000;
constexpr qint64 ToolTokens = 6000;
constexpr qint64 DeferredTokens = 1800;
constexpr qint64 AutocompactBuffer = 20000;

QJsonObject category(const char* id, const char* name, qint64 tokens, const char* kind)
{
    return {{"id", id}, {"name", name}, {"tokens", tokens}, {"kind", kind}, {"color", "text"}};
}

QJsonObject row(const QString& label, const QString& value)
{
    return {{"label", label}, {"value", value}};
}

} // namespace

QJsonObject context(const Conversation& conversation)
{
    const qint64 window = Models::contextWindow(conversation.settings.model);
    const qint64 used = conversation.ledger.contextTokens();
    const qint64 messages = std::max<qint64>(0, used - PromptTokens - ToolTokens);
    const qint64 free = std::max<qint64>(0, window - used - AutocompactBuffer);
    const QJsonArray categories{
        category("system_prompt", "System prompt", PromptTokens, "used"),
        category("system_tools", "System tools", ToolTokens, "used"),
        category("mcp_tools", "MCP tools", DeferredTokens, "deferred"),
        category("messages", "Messages", messages, "used"),
        category("autocompact_buffer", "Autocompact buffer", AutocompactBuffer, "buffer"),
        category("free", "Free space", free, "free"),
    };
    return {
        {"categories", categories},
        {"totalTokens", used},
        {"maxTokens", window},
        {"rawMaxTokens", window},
        {"model", conversation.settings.model},
        {"percentage", static_cast<qint64>(100 * used / window)},
        {"gridRows", QJsonArray()},
    };
}

QJsonObject cost(const Conversation& conversation)
{
    return {{"text", costText(conversation)}};
}

QJsonObject usage(const Conversation& conversation)
{
    const QJsonObject session{{"total_cost_usd", conversation.ledger.totalCost()},
                              {"model_usage", conversation.ledger.modelUsage()}};
    return {
        {"session", session},
        {"subscription_type", QJsonValue::Null},
        {"rate_limits_available", false},
        {"rate_limits", QJsonValue::Null},
        {"behaviors", QJsonValue::Null},
    };
}

QJsonObject status(const Conversation& conversation)
{
    const QJsonArray session{
        row("Version", QString::fromLatin1(Version) + u" (demo agent)"),
        row("Session ID", conversation.sessionId),
        row("Model", conversation.settings.model),
        row("Turns", QString::number(conversation.turns)),
    };
    const QJsonArray environment{
        row("Working folder", conversation.folder),
        row("Conversation file", conversation.store.path()),
    };
    return {{"sections", QJsonArray{
                             QJsonObject{{"title", "Session"}, {"rows", session}},
                             QJsonObject{{"title", "Environment"}, {"rows", environment}},
                         }}};
}

QJsonObject mcpServers(const Conversation& conversation)
{
    QJsonArray servers;
    for (const QString& name : conversation.mcpServers)
        servers.append(QJsonObject{{"name", name}, {"status", "disabled"}, {"scope", "dynamic"}});
    return {{"mcpServers", servers}};
}

QString contextText(const Conversation& conversation)
{
    const QJsonObject report = context(conversation);
    QString text = QString("**Context:** %1 of %2 tokens\n\n| What | Tokens |\n|---|---:|\n")
                       .arg(report.value("totalTokens").toInteger())
                       .arg(report.value("maxTokens").toInteger());
    for (const QJsonValue entry : report.value("categories").toArray()) {
        text +=
            QString("| %1 | %2 |\n").arg(entry["name"].toString()).arg(entry["tokens"].toInteger());
    }
    return text;
}

QString costText(const Conversation& conversation)
{
    return QString("Estimated cost:        $%1\nTurns:                 %2\nNothing is charged: "
                   "the demo agent calls no model.")
        .arg(conversation.ledger.totalCost(), 0, 'f', 4)
        .arg(conversation.turns);
}

} // namespace DemoAgent::Reports
