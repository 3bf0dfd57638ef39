#include "LiveReport.h"

#include "Base/JsonWriter.h"
#include "Chat/ChatJson.h"

namespace Bralto::LiveReport {

namespace {

/// One line that is being written.
class Line {
public:
    explicit Line(const char* event)
    {
        m_writer.beginObject();
        m_writer.member("event", event);
    }

    JsonWriter* operator->() { return &m_writer; }
    JsonWriter& writer() { return m_writer; }

    QByteArray end()
    {
        m_writer.endObject();
        return m_writer.take() + '\n';
    }

private:
    JsonWriter m_writer;
};

const char* name(ChatState::Kind kind)
{
    switch (kind) {
    case ChatState::Kind::Idle:
        return "idle";
    case ChatState::Kind::Starting:
        return "starting";
    case ChatState::Kind::Working:
        return "working";
    case ChatState::Kind::Waiting:
        return "waiting";
    case ChatState::Kind::Failed:
        return "failed";
    }
    return "";
}

const char* name(const ChatCommand::Action& action)
{
    if (std::holds_alternative<ChatCommand::Prompt>(action))
        return "prompt";
    return std::holds_alternative<ChatCommand::Terminal>(action) ? "terminal" : "native";
}

void writeStrings(JsonWriter& writer, const char* key, const QStringList& strings)
{
    writer.key(key);
    writer.beginArray();
    for (const QString& string : strings)
        writer.value(string);
    writer.endArray();
}

void write(JsonWriter& writer, const ChatQuestion::Item& item)
{
    writer.beginObject();
    writer.member("header", item.header);
    writer.member("question", item.question);
    writer.member("multiSelect", item.multiSelect);
    writer.key("options");
    writer.beginArray();
    for (const ChatQuestion::Option& option : item.options) {
        writer.beginObject();
        writer.member("label", option.label);
        writer.member("detail", option.detail);
        writer.endObject();
    }
    writer.endArray();
    writer.endObject();
}

/// Names the phase of remote control and, after a failure, says why.
struct PhaseWriter {
    JsonWriter& writer;

    void operator()(const ChatRemoteControl::Off&) const { writer.member("phase", "off"); }
    void operator()(const ChatRemoteControl::Starting&) const
    {
        writer.member("phase", "starting");
    }
    void operator()(const ChatRemoteControl::On& on) const
    {
        writer.member("phase", "on");
        writer.member("connected", on.connected);
    }
    void operator()(const ChatRemoteControl::Failed& failed) const
    {
        writer.member("phase", "failed");
        writer.member("message", failed.message);
    }
};

} // namespace

const char* help()
{
    return "  {\"event\":\"session\",\"id\":\"...\",\"folder\":\"...\"}   at the start and after "
           "\"switch\"\n"
           "  "
           "{\"event\":\"state\",\"state\":\"idle|starting|working|waiting|failed\",\"message\":\"."
           "..\"}\n"
           "                                        \"message\" only of \"failed\"\n"
           "  {\"event\":\"title\",\"title\":\"...\"}\n"
           "  "
           "{\"event\":\"permission\",\"id\":\"...\",\"tool\":\"...\",\"summary\":\"...\","
           "\"input\":{...}}\n"
           "  "
           "{\"event\":\"question\",\"id\":\"...\",\"items\":[{\"question\":\"...\",\"options\":[.."
           ".]}]}\n"
           "                                        both without \"id\" when the card goes\n"
           "  {\"event\":\"commands\",\"commands\":[...]}\n"
           "  {\"event\":\"models\",\"chosen\":\"...\",\"plan\":\"...\",\"models\":[...]}\n"
           "  {\"event\":\"remote\",\"phase\":\"off|starting|on|failed\",\"available\":false}\n"
           "  {\"event\":\"message\",\"row\":0,\"message\":{...}}   a message that is new or "
           "changed\n"
           "  {\"event\":\"subagents\",\"subagents\":[...]} "
           "{\"event\":\"status\",\"status\":{...}}\n"
           "  {\"event\":\"history\",\"loading\":true}\n"
           "  {\"event\":\"reply\",\"subtype\":\"...\",\"payload\":{...}}   or \"error\" in place "
           "of "
           "\"payload\"\n"
           "  {\"event\":\"agentMissing\",\"missing\":true}\n"
           "  {\"event\":\"turnEnded\"}\n"
           "  {\"error\":\"...\"}                       the line before was no command\n";
}

QByteArray error(const QString& text)
{
    JsonWriter writer;
    writer.beginObject();
    writer.member("error", text);
    writer.endObject();
    return writer.take() + '\n';
}

QByteArray session(const ClaudeChat& chat)
{
    Line line("session");
    line->member("id", chat.sessionId());
    line->member("folder", chat.folder());
    line->member("pane", chat.id());
    return line.end();
}

QByteArray state(const ChatState& state)
{
    Line line("state");
    line->member("state", name(state.kind));
    if (state.kind == ChatState::Kind::Failed)
        line->member("message", state.message);
    return line.end();
}

QByteArray title(const QString& title)
{
    Line line("title");
    line->member("title", title);
    return line.end();
}

QByteArray question(const std::optional<ChatQuestion>& question)
{
    Line line("question");
    if (question) {
        line->member("id", question->id);
        line->member("toolUseId", question->toolUseId);
        line->key("items");
        line->beginArray();
        for (const ChatQuestion::Item& item : question->items)
            write(line.writer(), item);
        line->endArray();
    }
    return line.end();
}

QByteArray permission(const std::optional<ChatPermission>& permission)
{
    Line line("permission");
    if (permission) {
        line->member("id", permission->id);
        line->member("tool", permission->tool);
        line->member("summary", permission->summary);
        line->key("input");
        line->raw(
            std::string_view(permission->input.constData(), std::size_t(permission->input.size())));
    }
    return line.end();
}

QByteArray commands(const QList<ChatCommand>& commands)
{
    Line line("commands");
    line->key("commands");
    line->beginArray();
    for (const ChatCommand& command : commands) {
        line->beginObject();
        line->member("name", command.name);
        line->member("description", command.description);
        line->member("argumentHint", command.argumentHint);
        writeStrings(line.writer(), "aliases", command.aliases);
        line->member("action", name(command.action));
        line->member("isBuiltin", command.isBuiltin);
        line->member("plugin", command.plugin);
        line->endObject();
    }
    line->endArray();
    return line.end();
}

QByteArray models(const ClaudeChat& chat)
{
    Line line("models");
    line->member("chosen", chat.chosenModel());
    line->member("plan", chat.plan());
    line->key("models");
    line->beginArray();
    for (const ChatModelOption& model : chat.models()) {
        line->beginObject();
        line->member("value", model.value);
        line->member("resolvedModel", model.resolvedModel);
        line->member("displayName", model.displayName);
        line->member("description", model.description);
        writeStrings(line.writer(), "effortLevels", model.effortLevels);
        line->endObject();
    }
    line->endArray();
    return line.end();
}

QByteArray remoteControl(const ChatRemoteControl& remoteControl)
{
    Line line("remote");
    std::visit(PhaseWriter{line.writer()}, remoteControl.phase);
    line->member("available", remoteControl.isAvailable);
    if (remoteControl.sessionUrl)
        line->member("url", remoteControl.sessionUrl->toString());
    return line.end();
}

QByteArray history(bool isLoading)
{
    Line line("history");
    line->member("loading", isLoading);
    return line.end();
}

QByteArray agentMissing(bool isMissing)
{
    Line line("agentMissing");
    line->member("missing", isMissing);
    return line.end();
}

QByteArray turnEnded()
{
    return Line("turnEnded").end();
}

QByteArray reply(const QString& subtype, const Expected<QByteArray, ChatControlError>& reply)
{
    Line line("reply");
    line->member("subtype", subtype);
    if (reply) {
        line->key("payload");
        line->raw(std::string_view(reply->constData(), std::size_t(reply->size())));
    } else {
        line->member("error", reply.error().message);
    }
    return line.end();
}

QByteArray message(std::size_t row, const ChatMessage& message)
{
    Line line("message");
    line->member("row", qint64(row));
    line->key("message");
    ChatJson::write(line.writer(), message);
    return line.end();
}

QByteArray subagents(const std::vector<ChatSubagent>& subagents)
{
    Line line("subagents");
    line->key("subagents");
    line->beginArray();
    for (const ChatSubagent& subagent : subagents)
        ChatJson::write(line.writer(), subagent);
    line->endArray();
    return line.end();
}

QByteArray status(const ChatSessionInfo& status)
{
    Line line("status");
    line->key("status");
    ChatJson::write(line.writer(), status);
    return line.end();
}

} // namespace Bralto::LiveReport
