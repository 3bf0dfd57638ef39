#include "DemoAgent/ControlRequests.h"

#include "DemoAgent/Commands.h"
#include "DemoAgent/Models.h"
#include "DemoAgent/Reports.h"

#include <unistd.h>

#include <map>

namespace DemoAgent {

namespace {

ControlReply success(const QJsonObject& response)
{
    ControlReply reply;
    reply.response = response;
    return reply;
}

ControlReply failure(const QString& error)
{
    ControlReply reply;
    reply.error = error;
    return reply;
}

ControlReply initialize(const QJsonObject&, Conversation& conversation)
{
    const QJsonObject account{
        {"tokenSource", "none"}, {"apiKeySource", "none"}, {"apiProvider", "demo"}};
    return success({
        {"commands", Commands::list(conversation.home, conversation.folder)},
        {"agents", QJsonArray{QJsonObject{{"name", "general-purpose"},
                                          {"description", "Looks around the folder"}}}},
        {"output_style", "default"},
        {"available_output_styles", QJsonArray{"default"}},
        {"models", Models::asJson()},
        {"account", account},
        {"pid", static_cast<qint64>(::getpid())},
        {"claude_code_version", Version},
        {"current_permission_mode", conversation.settings.permissionMode},
        {"remote_control_available", false},
        {"remote_control_auto_enable", false},
        {"session_state", "idle"},
        {"capabilities", QJsonArray()},
    });
}

ControlReply setModel(const QJsonObject& request, Conversation& conversation)
{
    const QString model = Models::resolved(request.value("model").toString("default"));
    conversation.settings.model = model;
    ControlReply reply = success({{"model", model}});
    reply.after.push_back(Wire::user(
        QString(u"<local-command-stdout>Set model to `" + model + u"`</local-command-stdout>")));
    return reply;
}

ControlReply setPermissionMode(const QJsonObject& request, Conversation& conversation)
{
    const QString asked = request.value("mode").toString();
    const auto mode = PermissionModes::known(asked);
    if (!mode) {
        return failure(u"Unknown permission mode \"" + asked +
                       u"\". Use default, acceptEdits, plan or bypassPermissions.");
    }
    if (*mode == u"bypassPermissions" && !conversation.settings.mayBypass) {
        return failure(
            "Cannot set permission mode to bypassPermissions because the session was not "
            "launched with --dangerously-skip-permissions");
    }
    conversation.settings.permissionMode = *mode;
    ControlReply reply = success({{"mode", *mode}});
    reply.after.push_back(Wire::modeStatus(*mode));
    return reply;
}

ControlReply getSettings(const QJsonObject&, Conversation& conversation)
{
    const QJsonObject applied{{"model", conversation.settings.model},
                              {"effort", conversation.settings.effort}};
    return success({{"effective", QJsonObject()}, {"sources", QJsonArray()}, {"applied", applied}});
}

// A level that isn't known succeeds too, and changes nothing.
ControlReply applyFlagSettings(const QJsonObject& request, Conversation& conversation)
{
    const QString level = request.value("settings")["effortLevel"].toString();
    if (Models::effortLevels().contains(level))
        conversation.settings.effort = level;
    return {};
}

ControlReply remoteControl(const QJsonObject& request, Conversation&)
{
    if (!request.value("enabled").toBool())
        return {};
    const QString reason = "Remote Control is not available in the demo agent.";
    ControlReply reply = failure(reason);
    reply.before.push_back({{"type", "system"},
                            {"subtype", "bridge_state"},
                            {"state", "failed"},
                            {"detail", reason},
                            {"failure_kind", "terminal"}});
    return reply;
}

ControlReply reloadSkills(const QJsonObject&, Conversation& conversation)
{
    ControlReply reply = success({});
    reply.after.push_back({{"type", "system"},
                           {"subtype", "commands_changed"},
                           {"commands", Commands::list(conversation.home, conversation.folder)}});
    return reply;
}

template <QJsonObject (*Report)(const Conversation&)>
ControlReply report(const QJsonObject&, Conversation& conversation)
{
    return success(Report(conversation));
}

using Answer = ControlReply (*)(const QJsonObject&, Conversation&);

const std::map<QString, Answer>& answers()
{
    static const std::map<QString, Answer> table{
        {"initialize", initialize},
        {"set_model", setModel},
        {"set_permission_mode", setPermissionMode},
        {"get_settings", getSettings},
        {"apply_flag_settings", applyFlagSettings},
        {"remote_control", remoteControl},
        {"reload_skills", reloadSkills},
        {"get_context_usage", report<Reports::context>},
        {"get_session_cost", report<Reports::cost>},
        {"get_usage", report<Reports::usage>},
        {"get_status", report<Reports::status>},
        {"mcp_status", report<Reports::mcpServers>},
    };
    return table;
}

} // namespace

ControlReply ControlRequests::answer(const QJsonObject& request, Conversation& conversation)
{
    const QString subtype = request.value("subtype").toString();
    const auto found = answers().find(subtype);
    if (found == answers().end())
        return failure(u"Unsupported control request subtype: " + subtype);
    return found->second(request, conversation);
}

} // namespace DemoAgent
