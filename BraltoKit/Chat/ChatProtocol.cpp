// The way in: a parsed line becomes events.

#include "Chat/ChatProtocol.h"

#include "Chat/ChatNumbers.h"
#include "Chat/ChatTimestamp.h"

#include <QUuid>

#include <algorithm>
#include <array>

namespace Bralto::ChatProtocol {

using namespace ChatEvents;

namespace {

using Events = std::vector<ChatEvent>;

/// A line and what is read of it whatever its type.
struct Line {
    const JsonObject& object;
    Source source;
    const QString& home;
    std::optional<QString> parent; ///< The tool call whose subagent speaks.
    QDateTime date;
};

QString qString(std::string_view text)
{
    return QString::fromUtf8(text.data(), qsizetype(text.size()));
}

QString joinedLines(const std::vector<std::string_view>& texts)
{
    if (texts.size() == 1)
        return qString(texts.front());
    QByteArray joined;
    for (std::size_t at = 0; at < texts.size(); ++at) {
        if (at > 0)
            joined.append('\n');
        joined.append(texts[at].data(), qsizetype(texts[at].size()));
    }
    return QString::fromUtf8(joined);
}

template <typename Event>
Events one(Event event)
{
    Events events;
    events.emplace_back(std::move(event));
    return events;
}

// What the agent says of itself

std::optional<ChatModelOption> modelOption(const JsonObject& object)
{
    const auto value = object.string("value");
    if (!value)
        return std::nullopt;
    ChatModelOption option;
    option.value = *value;
    option.resolvedModel = object.string("resolvedModel").value_or(*value);
    const auto name = object.string("displayName");
    option.displayName = name ? *name : displayName(*value);
    option.description = object.string("description");
    option.effortLevels = object.strings("supportedEffortLevels");
    return option;
}

ChatCapabilities capabilities(const JsonObject& object)
{
    ChatCapabilities result;
    result.commands = ChatCommands::catalog(object.objects("commands"));
    for (const JsonObject& model : object.objects("models")) {
        if (auto option = modelOption(model))
            result.models.append(std::move(*option));
    }
    result.version = object.string("claude_code_version");
    result.permissionMode = object.string("current_permission_mode");
    if (const auto account = object.object("account"))
        result.plan = account->string("subscriptionType");
    result.remoteControlAvailable = object.boolean("remote_control_available").value_or(false);
    result.remoteControlAutoEnable = object.boolean("remote_control_auto_enable").value_or(false);
    return result;
}

QMap<QString, QString> modelNames(const std::vector<JsonObject>& models)
{
    QMap<QString, QString> names;
    for (const JsonObject& model : models) {
        const auto resolved = model.string("resolvedModel");
        const auto name = model.string("displayName");
        if (model.view("value") == "default" || !resolved || !name || names.contains(*resolved))
            continue;
        names.insert(*resolved, *name);
    }
    return names;
}

// system

Events taskStarted(const JsonObject& object, const QString& toolId)
{
    return one(TaskStarted{toolId, object.string("task_id"), object.string("description"),
                           object.string("subagent_type"),
                           object.boolean("is_backgrounded").value_or(false)});
}

Events taskProgress(const JsonObject& object, const QString& toolId)
{
    TaskProgress progress{toolId, object.string("description"), std::nullopt, std::nullopt};
    if (const auto usage = object.object("usage")) {
        progress.toolUses = usage->integer("tool_uses");
        progress.tokens = usage->integer("total_tokens");
    }
    return one(std::move(progress));
}

Events taskEnded(const JsonObject& object, const QString& toolId)
{
    constexpr std::array<std::string_view, 3> Good{"completed", "success", "done"};
    const auto status = object.view("status").value_or("completed");
    return one(
        TaskEnded{toolId, std::ranges::find(Good, status) == Good.end(), object.string("summary")});
}

Events taskEvents(const JsonObject& object, std::string_view subtype)
{
    const auto toolId = object.string("tool_use_id");
    if (!toolId)
        return {};
    if (subtype == "task_started")
        return taskStarted(object, *toolId);
    if (subtype == "task_progress")
        return taskProgress(object, *toolId);
    if (subtype == "task_notification")
        return taskEnded(object, *toolId);
    return {};
}

Events systemEvents(const JsonObject& object)
{
    const auto subtype = object.view("subtype").value_or("");
    if (subtype == "init") {
        return one(Initialized{object.string("claude_code_version"), object.string("model"),
                               object.string("permissionMode"), object.string("cwd")});
    }
    if (subtype == "status") {
        const auto mode = object.string("permissionMode");
        return mode ? one(PermissionModeChanged{*mode}) : Events();
    }
    if (subtype == "bridge_state") {
        const auto state = object.string("state");
        return state ? one(RemoteControl{*state, object.string("detail")}) : Events();
    }
    if (subtype == "commands_changed") {
        if (!object.array("commands"))
            return {};
        return one(Commands{ChatCommands::catalog(object.objects("commands"))});
    }
    return taskEvents(object, subtype);
}

// stream_event

std::optional<ChatBlock> startedBlock(const JsonObject& object)
{
    const auto type = object.view("type").value_or("");
    if (type == "text")
        return ChatTextBlock{{}, object.string("text").value_or(QString())};
    if (type == "thinking")
        return ChatThinkingBlock{{}, object.string("thinking").value_or(QString())};
    if (type == "tool_use" || type == "server_tool_use") {
        const auto id = object.string("id");
        if (!id)
            return std::nullopt;
        ChatToolCall call;
        call.id = *id;
        call.name = object.string("name").value_or(QStringLiteral("Tool"));
        return call;
    }
    return std::nullopt;
}

Events streamDelta(const JsonObject& event)
{
    const auto index = event.integer("index");
    const auto delta = event.object("delta");
    if (!index || !delta)
        return {};
    for (const char* key : {"text", "thinking", "partial_json"}) {
        const auto text = delta->view(key);
        if (!text)
            continue;
        return text->empty() ? Events() : one(StreamDelta{*index, qString(*text)});
    }
    return {};
}

Events streamEvents(const JsonObject& event, const QDateTime& date)
{
    const auto type = event.view("type").value_or("");
    if (type == "content_block_delta")
        return streamDelta(event);
    if (type == "content_block_start") {
        const auto index = event.integer("index");
        const auto content = event.object("content_block");
        if (!index || !content)
            return {};
        auto started = startedBlock(*content);
        return started ? one(StreamBlock{*index, std::move(*started)}) : Events();
    }
    if (type == "message_start") {
        const auto message = event.object("message");
        const auto id = message ? message->string("id") : std::nullopt;
        return id ? one(StreamStart{*id, date}) : Events();
    }
    if (type == "message_stop")
        return one(StreamStop{});
    return {};
}

// assistant

Events assistantEvents(const Line& line)
{
    if (line.source == Source::Stored && line.object.boolean("isSidechain") == true)
        return {};
    const auto message = line.object.object("message");
    const auto id = message ? message->string("id") : std::nullopt;
    if (!id)
        return {};
    Assistant event{*id, {}, contextTokens(message->object("usage")), line.date, line.parent};
    const auto content = message->objects("content");
    for (std::size_t at = 0; at < content.size(); ++at) {
        const QString fallbackId = *id + u'-' + QString::number(at);
        if (auto decoded = block(content[at], fallbackId, line.home))
            event.blocks.append(std::move(*decoded));
    }
    return one(std::move(event));
}

// user

ChatToolResult toolResult(const JsonObject& element, const QString& toolUseId, bool isAsync)
{
    ChatToolResult result;
    result.toolUseId = toolUseId;
    result.isError = element.boolean("is_error").value_or(false);
    result.isAsync = isAsync;
    if (auto text = element.string("content")) {
        result.text = std::move(text);
        return result;
    }
    std::vector<std::string_view> texts;
    for (const JsonObject& part : element.objects("content")) {
        if (part.view("type") == "text") {
            const auto text = part.view("text").value_or("");
            if (!text.empty())
                texts.push_back(text);
        } else if (auto picture = image(part)) {
            result.images.append(std::move(*picture));
        }
    }
    if (!texts.empty())
        result.text = joinedLines(texts);
    return result;
}

/// What a line of the user holds besides tool results.
struct UserContent {
    QString text;
    QList<ChatImage> images;

    [[nodiscard]] bool isEmpty() const { return text.isEmpty() && images.isEmpty(); }
};

UserContent userContent(const JsonObject& message, const std::vector<JsonObject>& elements)
{
    if (auto text = message.string("content"))
        return {std::move(*text), {}};
    UserContent content;
    std::vector<std::string_view> texts;
    for (const JsonObject& element : elements) {
        if (element.view("type") == "text") {
            if (const auto text = element.view("text"))
                texts.push_back(*text);
        } else if (auto picture = image(element)) {
            content.images.append(std::move(*picture));
        }
    }
    if (std::ranges::any_of(texts, [](std::string_view text) { return !text.empty(); }))
        content.text = joinedLines(texts);
    return content;
}

QString lineId(const JsonObject& object)
{
    if (auto id = object.string("uuid"))
        return *id;
    return QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
}

/// A stored line of the user as what it was: a turn, a command's output, or nothing to show.
Events storedUserEvents(const Line& line, UserContent content)
{
    if (auto command = slashCommand(content.text)) {
        content.text = std::move(*command);
    } else if (content.text.startsWith(u"<local-command-stdout>")) {
        content.text.remove(QStringLiteral("<local-command-stdout>"));
        content.text.remove(QStringLiteral("</local-command-stdout>"));
        const QString output = content.text.trimmed();
        if (output.isEmpty())
            return {};
        return one(Notice{lineId(line.object), output, line.date, line.parent});
    } else if (content.text.startsWith(u"<local-command-caveat>") ||
               content.text.startsWith(u"<system-reminder>")) {
        return {};
    }

    ChatMessage message;
    message.id = lineId(line.object);
    message.role = ChatRole::User;
    message.date = line.date;
    if (!content.text.isEmpty())
        message.blocks.append(ChatTextBlock{message.id + "-text", std::move(content.text)});
    for (qsizetype at = 0; at < content.images.size(); ++at) {
        message.blocks.append(ChatImageBlock{message.id + "-image-" + QString::number(at),
                                             std::move(content.images[at])});
    }
    return one(User{std::move(message)});
}

Events userEvents(const Line& line)
{
    if (line.source == Source::Stored &&
        (line.object.boolean("isSidechain") == true || line.object.boolean("isMeta") == true))
        return {};
    const auto message = line.object.object("message");
    if (!message)
        return {};
    const auto toolUseResult = line.object.object("tool_use_result");
    const bool isAsync = toolUseResult && toolUseResult->boolean("isAsync").value_or(false);
    const auto elements = message->objects("content");

    Events events;
    ToolResults results{{}, line.parent};
    for (const JsonObject& element : elements) {
        if (element.view("type") != "tool_result")
            continue;
        if (const auto toolUseId = element.string("tool_use_id"))
            results.results.append(toolResult(element, *toolUseId, isAsync));
    }
    if (!results.results.isEmpty())
        events.emplace_back(std::move(results));

    UserContent content = userContent(*message, elements);
    if (content.isEmpty())
        return events;
    // The user's own turn is in the transcript before the agent has seen it, so text that comes
    // back on the live stream is never that turn.
    if (line.source == Source::Live || content.text.startsWith(u"[Request interrupted")) {
        events.emplace_back(
            Notice{lineId(line.object), std::move(content.text), line.date, line.parent});
        return events;
    }
    std::ranges::move(storedUserEvents(line, std::move(content)), std::back_inserter(events));
    return events;
}

// control_request, control_response

Events controlEvents(const JsonObject& object)
{
    const auto id = object.string("request_id");
    const auto request = object.object("request");
    if (!id || !request)
        return {};
    if (request->view("subtype") != "can_use_tool")
        return one(UnsupportedRequest{*id});
    const auto input = request->object("input");
    QByteArray bytes = input ? input->compact() : QByteArray("{}");
    const auto tool = request->string("tool_name");
    if (tool == u"AskUserQuestion") {
        ChatQuestion asked = question(input, *id);
        asked.toolUseId = request->string("tool_use_id");
        return one(Question{*id, std::move(asked), std::move(bytes)});
    }
    return one(Permission{*id, std::move(bytes), tool.value_or(QStringLiteral("Tool"))});
}

Events controlResponseEvents(const JsonObject& object)
{
    const auto response = object.object("response");
    if (!response)
        return {};
    Events events;
    const auto inner = response->object("response");
    if (inner && inner->array("models"))
        events.emplace_back(ModelNames{modelNames(inner->objects("models"))});
    if (inner && inner->contains("commands"))
        events.emplace_back(Capabilities{capabilities(*inner)});

    ControlResponse reply;
    reply.requestId = response->string("request_id").value_or(QString());
    if (response->view("subtype") == "error") {
        reply.error = response->string("error").value_or(QString());
        if (reply.error->isEmpty())
            reply.error = QStringLiteral("Claude couldn't do that");
    } else if (inner) {
        reply.payload = inner->compact();
    }
    events.emplace_back(std::move(reply));
    return events;
}

// result

QString failureText(const JsonObject& object)
{
    const QStringList candidates{object.strings("errors").join(u'\n'),
                                 object.string("result").value_or(QString()),
                                 object.string("subtype").value_or(QString())};
    for (const QString& candidate : candidates) {
        if (!candidate.isEmpty())
            return candidate;
    }
    return QStringLiteral("Claude stopped");
}

Events resultEvents(const JsonObject& object)
{
    Result result;
    const auto subtype = object.view("subtype");
    if (object.boolean("is_error") == true || (subtype && *subtype != "success"))
        result.error = failureText(object);
    if (const auto usage = object.object("modelUsage")) {
        for (const auto& [model, element] : usage->raw()) {
            const auto entry = JsonValue(element).object();
            if (const auto window = entry ? entry->integer("contextWindow") : std::nullopt)
                result.contextWindows.insert(qString(model), *window);
        }
    }
    if (const auto usage = object.object("usage")) {
        qint64 tokens = 0;
        for (const char* key : {"input_tokens", "output_tokens", "cache_creation_input_tokens",
                                "cache_read_input_tokens"})
            tokens = saturatingSum(tokens, usage->integer(key).value_or(0));
        result.tokens = tokens;
    }
    result.costUSD = object.number("total_cost_usd");
    result.queued = object.integer("queued_turn_count").value_or(0);
    return one(std::move(result));
}

} // namespace

std::vector<ChatEvent> events(const JsonObject& object, Source source, const QDateTime& now,
                              const QString& home)
{
    const auto type = object.view("type").value_or("");
    const auto timestamp = object.view("timestamp");
    const auto stamped = timestamp ? ChatTimestamp::parse(*timestamp) : std::nullopt;
    const Line line{object, source, home, object.string("parent_tool_use_id"),
                    stamped ? *stamped : now};

    if (type == "stream_event") {
        const auto event = object.object("event");
        return event && !line.parent ? streamEvents(*event, line.date) : Events();
    }
    if (type == "assistant")
        return assistantEvents(line);
    if (type == "user")
        return userEvents(line);
    if (type == "system")
        return systemEvents(object);
    if (type == "result")
        return resultEvents(object);
    if (type == "control_request")
        return controlEvents(object);
    if (type == "control_response")
        return controlResponseEvents(object);
    if (type == "control_cancel_request") {
        const auto id = object.string("request_id");
        return id ? one(CancelledRequest{*id}) : Events();
    }
    if (type == "rate_limit_event") {
        const auto info = object.object("rate_limit_info");
        return info ? one(RateLimits{info->compact()}) : Events();
    }
    return {};
}

} // namespace Bralto::ChatProtocol
