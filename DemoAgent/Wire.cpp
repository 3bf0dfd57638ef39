#include "DemoAgent/Wire.h"

#include <QDateTime>
#include <QJsonDocument>
#include <QStringList>
#include <QUuid>

namespace DemoAgent {

namespace Wire {

namespace {

QJsonObject streamEvent(const QString& messageId, const QJsonObject& event)
{
    return {
        {"type", "stream_event"},
        {"event", event},
        {"parent_tool_use_id", QJsonValue::Null},
        {"api_message_id", messageId},
    };
}

QJsonArray suggestions(const ToolUse& use)
{
    QJsonArray result;
    if (use.name == u"Bash") {
        const QJsonObject rule{{"toolName", use.name}, {"ruleContent", use.input.value("command")}};
        result.append(QJsonObject{
            {"type", "addRules"},
            {"rules", QJsonArray{rule}},
            {"behavior", "allow"},
            {"destination", "localSettings"},
        });
    }
    result.append(
        QJsonObject{{"type", "setMode"}, {"mode", "acceptEdits"}, {"destination", "session"}});
    return result;
}

} // namespace

QByteArray encode(const QJsonObject& line)
{
    return QJsonDocument(line).toJson(QJsonDocument::Compact) + '\n';
}

QJsonObject requesting()
{
    return status("requesting");
}

QJsonObject status(const QString& status)
{
    return {{"type", "system"}, {"subtype", "status"}, {"status", status}};
}

QJsonObject modeStatus(const QString& permissionMode)
{
    return {
        {"type", "system"},
        {"subtype", "status"},
        {"status", QJsonValue::Null},
        {"permissionMode", permissionMode},
    };
}

QJsonObject messageStart(const QString& messageId, const QString& model, const Usage& usage)
{
    const QJsonObject message{
        {"id", messageId},
        {"type", "message"},
        {"role", "assistant"},
        {"model", model},
        {"content", QJsonArray()},
        {"stop_reason", QJsonValue::Null},
        {"stop_sequence", QJsonValue::Null},
        {"usage", usage.asJson()},
    };
    return streamEvent(messageId, {{"type", "message_start"}, {"message", message}});
}

QJsonObject blockStart(const QString& messageId, int index, const QJsonObject& block)
{
    return streamEvent(
        messageId, {{"type", "content_block_start"}, {"index", index}, {"content_block", block}});
}

QJsonObject blockDelta(const QString& messageId, int index, const QJsonObject& delta)
{
    return streamEvent(messageId,
                       {{"type", "content_block_delta"}, {"index", index}, {"delta", delta}});
}

QJsonObject blockStop(const QString& messageId, int index)
{
    return streamEvent(messageId, {{"type", "content_block_stop"}, {"index", index}});
}

QJsonObject messageDelta(const QString& messageId, const QJsonValue& stopReason, const Usage& usage)
{
    const QJsonObject delta{{"stop_reason", stopReason}, {"stop_sequence", QJsonValue::Null}};
    return streamEvent(messageId,
                       {{"type", "message_delta"}, {"delta", delta}, {"usage", usage.asJson()}});
}

QJsonObject messageStop(const QString& messageId)
{
    return streamEvent(messageId, {{"type", "message_stop"}});
}

QJsonObject textBlock(const QString& text)
{
    return {{"type", "text"}, {"text", text}};
}

QJsonObject thinkingBlock(const QString& thinking)
{
    return {{"type", "thinking"}, {"thinking", thinking}, {"signature", ""}};
}

QJsonObject toolBlock(const ToolUse& use)
{
    return {{"type", "tool_use"}, {"id", use.id}, {"name", use.name}, {"input", use.input}};
}

QJsonObject imageBlock(const QByteArray& png)
{
    const QJsonObject source{
        {"type", "base64"},
        {"media_type", "image/png"},
        {"data", QString::fromLatin1(png.toBase64())},
    };
    return {{"type", "image"}, {"source", source}};
}

QJsonObject assistantMessage(const QString& messageId, const QString& model,
                             const QJsonObject& block, const QJsonValue& stopReason,
                             const Usage& usage)
{
    return {
        {"id", messageId},
        {"type", "message"},
        {"role", "assistant"},
        {"model", model},
        {"content", QJsonArray{block}},
        {"stop_reason", stopReason},
        {"stop_sequence", QJsonValue::Null},
        {"usage", usage.asJson()},
    };
}

QJsonObject assistant(const QJsonObject& message)
{
    return {
        {"type", "assistant"},
        {"message", message},
        {"parent_tool_use_id", QJsonValue::Null},
        {"timestamp", timestamp()},
    };
}

QJsonObject toolResultMessage(const QString& toolUseId, const ToolResult& result)
{
    const QJsonObject block{
        {"type", "tool_result"},
        {"tool_use_id", toolUseId},
        {"content", result.content},
        {"is_error", result.isError},
    };
    return userMessage(QJsonArray{block});
}

QJsonObject toolResult(const QString& toolUseId, const ToolResult& result)
{
    QJsonObject line{
        {"type", "user"},
        {"message", toolResultMessage(toolUseId, result)},
        {"parent_tool_use_id", QJsonValue::Null},
        {"timestamp", timestamp()},
    };
    if (!result.details.isNull())
        line.insert("tool_use_result", result.details);
    return line;
}

QJsonObject userMessage(const QJsonValue& content)
{
    return {{"role", "user"}, {"content", content}};
}

QJsonObject user(const QJsonValue& content)
{
    return {
        {"type", "user"},
        {"message", userMessage(content)},
        {"parent_tool_use_id", QJsonValue::Null},
        {"timestamp", timestamp()},
    };
}

QJsonObject canUseTool(const QString& requestId, const ToolUse& use, const QJsonObject& input)
{
    QJsonObject request{
        {"subtype", "can_use_tool"}, {"tool_name", use.name},
        {"display_name", use.name},  {"input", input},
        {"tool_use_id", use.id},
    };
    if (use.name == u"AskUserQuestion" || use.name == u"ExitPlanMode")
        request.insert("requires_user_interaction", true);
    else
        request.insert("permission_suggestions", suggestions(use));
    if (!use.description.isEmpty())
        request.insert("description", use.description);
    return {{"type", "control_request"}, {"request_id", requestId}, {"request", request}};
}

QJsonObject cancelRequest(const QString& requestId)
{
    return {{"type", "control_cancel_request"}, {"request_id", requestId}};
}

QJsonObject reply(const QString& requestId, const std::optional<QJsonObject>& response)
{
    QJsonObject body{{"subtype", "success"}, {"request_id", requestId}};
    if (response)
        body.insert("response", *response);
    return {{"type", "control_response"}, {"response", body}};
}

QJsonObject replyError(const QString& requestId, const QString& error)
{
    const QJsonObject body{{"subtype", "error"}, {"request_id", requestId}, {"error", error}};
    return {{"type", "control_response"}, {"response", body}};
}

} // namespace Wire

QStringList pieces(const QString& text, qsizetype size)
{
    QStringList result;
    qsizetype from = 0;
    while (from < text.size()) {
        qsizetype until = qMin(from + size, text.size());
        if (until < text.size() && text.at(until).isLowSurrogate())
            ++until;
        result.append(text.mid(from, until - from));
        from = until;
    }
    return result;
}

QString makeId(QLatin1StringView prefix)
{
    return prefix + QUuid::createUuid().toString(QUuid::Id128).left(24);
}

QString makeUuid()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces);
}

QString timestamp()
{
    return QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs);
}

} // namespace DemoAgent
