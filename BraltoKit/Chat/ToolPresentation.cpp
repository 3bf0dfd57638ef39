#include "Chat/ToolPresentation.h"

#include "Base/Json.h"
#include "Base/Paths.h"

#include <QUrl>

namespace Bralto {

namespace {

bool isOneOf(const QString& name, std::initializer_list<QLatin1String> names)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

constexpr QLatin1String named(const char* name)
{
    return QLatin1String(name);
}

QString fileName(const ChatToolCall& call)
{
    const QString name = call.filePath ? call.filePath->section(u'/', -1) : QString();
    return name.isEmpty() ? call.summary : name;
}

QString host(const QString& address)
{
    const QString name = QUrl(address).host();
    return name.isEmpty() ? address : name;
}

QString withFirst(QString text, bool upper)
{
    if (!text.isEmpty())
        text[0] = upper ? text[0].toUpper() : text[0].toLower();
    return text;
}

ToolPresentation foreignTool(const ChatToolCall& call)
{
    const QStringList parts = call.name.split(QStringLiteral("__"));
    if (parts.size() < 3 || parts[0] != QLatin1String("mcp"))
        return {QStringLiteral("wrench.and.screwdriver"), call.name, call.summary, false};
    QString verb = parts.mid(2).join(u'_');
    return {QStringLiteral("puzzlepiece.extension"), withFirst(verb.replace(u'_', u' '), true),
            call.summary.isEmpty() ? parts[1] : call.summary, false};
}

} // namespace

ToolPresentation ToolPresentation::of(const ChatToolCall& call)
{
    const QString& name = call.name;
    if (isOneOf(name, {named("Bash"), named("BashOutput")}))
        return {QStringLiteral("terminal"), QStringLiteral("Ran"), call.summary, true};
    if (name == QLatin1String("Read"))
        return {QStringLiteral("doc.text"), QStringLiteral("Read"), fileName(call), false};
    if (isOneOf(name, {named("Edit"), named("MultiEdit")}))
        return {QStringLiteral("pencil"), QStringLiteral("Edited"), fileName(call), false};
    if (name == QLatin1String("Write"))
        return {QStringLiteral("square.and.pencil"), QStringLiteral("Wrote"), fileName(call),
                false};
    if (name == QLatin1String("NotebookEdit"))
        return {QStringLiteral("book"), QStringLiteral("Edited"), fileName(call), false};
    if (isOneOf(name, {named("Grep"), named("Glob")}))
        return {QStringLiteral("magnifyingglass"), QStringLiteral("Searched for"), call.summary,
                true};
    if (name == QLatin1String("WebFetch"))
        return {QStringLiteral("globe"), QStringLiteral("Fetched"), host(call.summary), false};
    if (name == QLatin1String("WebSearch"))
        return {QStringLiteral("globe"), QStringLiteral("Searched the web for"), call.summary,
                false};
    if (isOneOf(name, {named("Task"), named("Agent")}))
        return {QStringLiteral("person.2"), QStringLiteral("Asked an agent to"),
                withFirst(call.summary, false), false};
    if (name == QLatin1String("TodoWrite"))
        return {QStringLiteral("checklist"), QStringLiteral("Updated the plan"), {}, false};
    if (name == QLatin1String("AskUserQuestion"))
        return {QStringLiteral("questionmark.bubble"), QStringLiteral("Asked you"), call.summary,
                false};
    return foreignTool(call);
}

namespace ToolDetails {

QString count(const ChatToolCall& call, const ChatSubagent* subagent)
{
    const auto counted = [](qint64 number, const char* one, const char* many) {
        return QStringLiteral("%1 %2").arg(number).arg(QLatin1String(number == 1 ? one : many));
    };
    if (subagent != nullptr) {
        const qint64 tools = std::max(subagent->toolUses, qint64(calls(*subagent).size()));
        return tools > 0 ? counted(tools, "tool", "tools") : QString();
    }
    if (call.name == QLatin1String("Read") && call.status == ChatToolStatus::Done &&
        call.resultText && !call.resultText->isEmpty()) {
        const qsizetype ends = call.resultText->count(u'\n');
        return counted(ends + (call.resultText->endsWith(u'\n') ? 0 : 1), "line", "lines");
    }
    return {};
}

bool canOpen(const ChatToolCall& call, const ChatSubagent* subagent)
{
    return !call.edits.isEmpty() || !call.resultImages.isEmpty() ||
           (call.resultText && !call.resultText->isEmpty()) ||
           (subagent != nullptr && !calls(*subagent).empty());
}

QString input(const ChatToolCall& call)
{
    if (call.inputJSON.isEmpty() || call.inputJSON == QLatin1String("{}"))
        return {};
    if (call.name == QLatin1String("Bash") || call.name == QLatin1String("PowerShell")) {
        JsonReader reader;
        const auto object = reader.object(call.inputJSON.toUtf8());
        if (const auto command = object ? object->string("command") : std::nullopt)
            return *command;
    }
    return call.inputJSON;
}

std::vector<const ChatToolCall*> calls(const ChatSubagent& subagent)
{
    std::vector<const ChatToolCall*> calls;
    for (const ChatMessage& message : subagent.messages) {
        for (const ChatBlock& block : message.blocks) {
            if (const auto* call = std::get_if<ChatToolCall>(&block))
                calls.push_back(call);
        }
    }
    return calls;
}

QString statusName(ChatToolStatus status)
{
    switch (status) {
    case ChatToolStatus::Running:
        return QStringLiteral("Running");
    case ChatToolStatus::Done:
        return QStringLiteral("Done");
    case ChatToolStatus::Failed:
        break;
    }
    return QStringLiteral("Failed");
}

} // namespace ToolDetails

} // namespace Bralto
