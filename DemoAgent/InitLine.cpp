#include "DemoAgent/InitLine.h"

#include "DemoAgent/Commands.h"

namespace DemoAgent {

QJsonObject initLine(const Conversation& conversation)
{
    QJsonArray servers;
    for (const QString& name : conversation.mcpServers)
        servers.append(QJsonObject{{"name", name}, {"status", "disabled"}});
    QJsonArray commandNames;
    for (const QJsonValue command : Commands::list(conversation.home, conversation.folder))
        commandNames.append(command["name"]);
    static const QStringList tools{
        "Task", "AskUserQuestion", "Bash",     "Edit", "ExitPlanMode", "Glob", "Grep",
        "Read", "TodoWrite",       "WebFetch", "Write"};
    return {
        {"type", "system"},
        {"subtype", "init"},
        {"cwd", conversation.folder},
        {"tools", QJsonArray::fromStringList(tools)},
        {"mcp_servers", servers},
        {"model", conversation.settings.model},
        {"permissionMode", conversation.settings.permissionMode},
        {"slash_commands", commandNames},
        {"claude_code_version", Version},
        {"output_style", "default"},
        {"agents", QJsonArray{"general-purpose"}},
        {"skills", QJsonArray()},
        {"plugins", QJsonArray()},
        {"capabilities", QJsonArray()},
    };
}

} // namespace DemoAgent
