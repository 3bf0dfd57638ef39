#include "Browser/BraltoMCP.h"

#include "Base/JsonSlices.h"
#include "Base/JsonWriter.h"
#include "Browser/McpCatalogue.h"

#include <algorithm>

namespace Bralto::BraltoMCP {

namespace {

constexpr std::string_view Versions[] = {"2025-11-25", "2025-06-18", "2025-03-26", "2024-11-05"};
constexpr std::string_view DefaultVersion = Versions[0];

constexpr int ParseError = -32700;
constexpr int InvalidRequest = -32600;
constexpr int MethodNotFound = -32601;
constexpr int InvalidParameters = -32602;

std::string_view view(const QByteArray& bytes)
{
    return {bytes.constData(), std::size_t(bytes.size())};
}

QString fromUtf8(std::string_view utf8)
{
    return QString::fromUtf8(utf8.data(), qsizetype(utf8.size()));
}

/// The text of the value at `key`, where a lookup in `object` finds one.
std::string_view slice(const JsonObject& object, std::string_view key, std::string_view text)
{
    JsonSlices slices(text);
    for (const auto [name, value] : object.raw()) {
        const auto slice = slices.next();
        if (name == key)
            return slice.value_or(std::string_view());
    }
    return {};
}

QByteArray success(std::string_view id, std::string_view result)
{
    JsonWriter writer;
    writer.beginObject();
    writer.member("jsonrpc", "2.0");
    writer.key("id");
    writer.raw(id);
    writer.key("result");
    writer.raw(result);
    writer.endObject();
    return writer.take();
}

QByteArray initializeResult(const std::optional<JsonObject>& params, const QString& version)
{
    const auto wanted = params ? params->view("protocolVersion") : std::nullopt;
    const bool isKnown = wanted && std::ranges::find(Versions, *wanted) != std::end(Versions);

    JsonWriter writer;
    writer.beginObject();
    writer.member("protocolVersion", isKnown ? *wanted : DefaultVersion);
    writer.key("capabilities");
    writer.raw(R"({"tools":{"listChanged":false}})");
    writer.key("serverInfo");
    writer.beginObject();
    writer.member("name", "bralto");
    writer.member("title", "Bralto Browser");
    writer.member("version", version);
    writer.endObject();
    writer.member("instructions", McpCatalogue::instructions());
    writer.endObject();
    return writer.take();
}

QByteArray listResult()
{
    return "{\"tools\":" + McpCatalogue::json() + '}';
}

QByteArray failedResult(const QString& message)
{
    JsonWriter writer;
    writer.beginObject();
    writer.key("content");
    writer.beginArray();
    writer.beginObject();
    writer.member("type", "text");
    writer.member("text", message);
    writer.endObject();
    writer.endArray();
    writer.member("isError", true);
    writer.endObject();
    return writer.take();
}

/// The window's answer as a result, or why it is none.
Expected<QByteArray, QString> decodeAnswer(const QByteArray& line)
{
    JsonReader reader;
    const auto value = reader.value(view(line));
    if (!value)
        return Unexpected{value.error()};
    const auto answer = value->object();
    if (!answer)
        return Unexpected{QStringLiteral("Bralto sent back something unexpected")};
    JsonWriter writer;
    writer.beginObject();
    answer->writeMembers(writer);
    if (!answer->contains("content")) {
        writer.key("content");
        writer.raw("[]");
    }
    writer.endObject();
    return writer.take();
}

/// A tool's failure is a result too: something that the agent should read.
QByteArray callResult(const QString& tool, std::string_view arguments, const Relay& relay)
{
    const auto line = relay(tool, arguments);
    if (!line)
        return failedResult(line.error().message);
    const auto result = decodeAnswer(*line);
    return result ? *result : failedResult(result.error());
}

/// `paramsText` is what `params` was parsed from.
QByteArray call(std::string_view id, const std::optional<JsonObject>& params,
                std::string_view paramsText, const Relay& relay)
{
    const auto name = params ? params->view("name") : std::nullopt;
    if (!name)
        return error(id, InvalidParameters, QStringLiteral("tools/call needs a tool name"));
    const QString tool = fromUtf8(*name);
    if (!toolNames().contains(tool))
        return error(id, InvalidParameters, QStringLiteral("Unknown tool: ") + tool);
    const bool hasArguments = params->object("arguments").has_value();
    const std::string_view arguments =
        hasArguments ? slice(*params, "arguments", paramsText) : "{}";
    return success(id, view(callResult(tool, arguments, relay)));
}

std::optional<QByteArray> handleBatch(const JsonArray& messages, std::string_view text,
                                      const Server& server)
{
    QByteArray answers;
    JsonSlices slices(text);
    for (const auto element : messages.raw()) {
        const auto slice = slices.next();
        const auto message = JsonValue(element).object();
        if (!message || !slice)
            continue;
        if (const auto answer = handle(*message, *slice, server))
            answers += (answers.isEmpty() ? '[' : ',') + *answer;
    }
    if (answers.isEmpty())
        return std::nullopt;
    return answers + ']';
}

} // namespace

std::optional<QByteArray> handle(std::string_view line, const Server& server)
{
    JsonReader reader;
    const auto value = reader.value(line);
    if (!value)
        return error("null", ParseError, QStringLiteral("Parse error"));
    if (const auto messages = value->array())
        return handleBatch(*messages, line, server);
    if (const auto message = value->object())
        return handle(*message, line, server);
    return error("null", InvalidRequest, QStringLiteral("Invalid request"));
}

std::optional<QByteArray> handle(const JsonObject& message, std::string_view text,
                                 const Server& server)
{
    const auto idValue = message.value("id");
    const auto method = message.view("method");
    if (!idValue || idValue->isNull() || !method)
        return std::nullopt;
    const std::string_view id = slice(message, "id", text);
    const auto params = message.object("params");

    if (*method == "initialize")
        return success(id, view(initializeResult(params, server.version)));
    if (*method == "ping")
        return success(id, "{}");
    if (*method == "tools/list")
        return success(id, view(listResult()));
    if (*method == "tools/call")
        return call(id, params, params ? slice(message, "params", text) : "", server.relay);
    return error(id, MethodNotFound, QStringLiteral("Method not found: ") + fromUtf8(*method));
}

const QSet<QString>& toolNames()
{
    return McpCatalogue::toolNames();
}

QByteArray error(std::string_view id, int code, const QString& message)
{
    JsonWriter writer;
    writer.beginObject();
    writer.member("jsonrpc", "2.0");
    writer.key("id");
    writer.raw(id);
    writer.key("error");
    writer.beginObject();
    writer.member("code", code);
    writer.member("message", message);
    writer.endObject();
    writer.endObject();
    return writer.take();
}

} // namespace Bralto::BraltoMCP
