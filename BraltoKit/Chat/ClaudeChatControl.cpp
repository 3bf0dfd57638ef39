// Requests to the agent and the settings that are changed through them. A setting changes here at
// once and is put back, with a note, if the agent refuses.

#include "Chat/ClaudeChat.h"

#include "Base/Json.h"
#include "Chat/ChatProtocol.h"

#include <utility>

namespace Bralto {

namespace {

using namespace std::chrono_literals;

constexpr auto ReplyLimit = 30s;
constexpr auto RemoteControlLimit = 60s;

} // namespace

void ClaudeChat::control(const QString& subtype, const QVariantMap& fields,
                         std::chrono::seconds timeout, Reply reply)
{
    if (!launchIfNeeded(Turn::No)) {
        m_services.scheduler.after(0ms, this, [reply = std::move(reply)] {
            reply(Unexpected{ChatControlError{QStringLiteral("Claude isn't running.")}});
        });
        return;
    }
    const QString id = subtype + QLatin1Char('-') + newUuid();
    const quint64 call = m_services.scheduler.after(timeout, this, [this, id] {
        finishReply(id, Unexpected{ChatControlError{QStringLiteral("Claude didn't answer.")}});
    });
    m_replies.emplace(id, PendingReply{std::move(reply), call});
    write(ChatProtocol::controlRequest(id, subtype, fields));
}

void ClaudeChat::finishReply(const QString& requestId,
                             const Expected<QByteArray, ChatControlError>& reply)
{
    auto pending = m_replies.extract(requestId);
    if (pending.empty())
        return;
    m_services.scheduler.cancel(pending.mapped().timeout);
    pending.mapped().reply(reply);
}

void ClaudeChat::failReplies()
{
    for (const auto& [id, pending] : std::exchange(m_replies, {})) {
        m_services.scheduler.cancel(pending.timeout);
        pending.reply(Unexpected{ChatControlError{QStringLiteral("Claude stopped.")}});
    }
}

// Settings

void ClaudeChat::changeStatus(const std::function<void(ChatSessionInfo&)>& alter)
{
    const ChatSessionInfo before = m_transcript.status;
    alter(m_transcript.status);
    ChatTranscriptChange told;
    told.status = before != m_transcript.status;
    change(told);
}

void ClaudeChat::setModel(const QString& value)
{
    setChosenModel(value);
    for (const ChatModelOption& option : std::as_const(m_models)) {
        if (option.value != value)
            continue;
        changeStatus([&](ChatSessionInfo&) { m_transcript.setModel(option.resolvedModel); });
        break;
    }
    control(QStringLiteral("set_model"), {{QStringLiteral("model"), value}}, ReplyLimit,
            [this, value](const Expected<QByteArray, ChatControlError>& reply) {
                if (!reply) {
                    if (m_chosenModel == value)
                        setChosenModel(std::nullopt);
                    note(QStringLiteral("Couldn't switch to ") + value + QStringLiteral(": ") +
                         reply.error().message);
                }
                // A process that has gone has no settings, and this must not start another one.
                if (isRunning())
                    refreshSettings();
            });
}

void ClaudeChat::refreshSettings()
{
    control(QStringLiteral("get_settings"), {}, ReplyLimit,
            [this](const Expected<QByteArray, ChatControlError>& reply) {
                if (reply)
                    takeSettings(*reply);
            });
}

void ClaudeChat::takeSettings(const QByteArray& reply)
{
    JsonReader reader;
    const auto settings = reader.object(reply);
    const auto applied = settings ? settings->object("applied") : std::nullopt;
    if (!applied)
        return;
    changeStatus([&](ChatSessionInfo& status) {
        if (const auto model = applied->string("model"))
            m_transcript.setModel(*model);
        if (const auto effort = applied->string("effort"))
            status.effort = *effort;
    });
}

void ClaudeChat::setEffort(const QString& level)
{
    const auto before = m_transcript.status.effort;
    changeStatus([&](ChatSessionInfo& status) { status.effort = level; });
    const QVariantMap settings{{QStringLiteral("effortLevel"), level}};
    control(QStringLiteral("apply_flag_settings"), {{QStringLiteral("settings"), settings}},
            ReplyLimit, [this, level, before](const Expected<QByteArray, ChatControlError>& reply) {
                if (reply)
                    return;
                changeStatus([&](ChatSessionInfo& status) {
                    if (status.effort == level)
                        status.effort = before;
                });
                note(QStringLiteral("Couldn't set effort: ") + reply.error().message);
            });
}

void ClaudeChat::setPermissionMode(const QString& mode)
{
    const auto before = m_transcript.status.permissionMode;
    changeStatus([&](ChatSessionInfo& status) { status.permissionMode = mode; });
    control(QStringLiteral("set_permission_mode"), {{QStringLiteral("mode"), mode}}, ReplyLimit,
            [this, mode, before](const Expected<QByteArray, ChatControlError>& reply) {
                if (reply) {
                    JsonReader reader;
                    const auto answer = reader.object(*reply);
                    const auto actual = answer ? answer->string("mode") : std::nullopt;
                    if (actual)
                        changeStatus(
                            [&](ChatSessionInfo& status) { status.permissionMode = actual; });
                    return;
                }
                changeStatus([&](ChatSessionInfo& status) {
                    if (status.permissionMode == mode)
                        status.permissionMode = before;
                });
                note(QStringLiteral("Couldn't switch mode: ") + reply.error().message);
            });
}

void ClaudeChat::setRemoteControl(bool on)
{
    ChatRemoteControl next = m_remoteControl;
    if (on)
        next.phase = ChatRemoteControl::Starting{};
    else
        next.phase = ChatRemoteControl::Off{};
    if (!on)
        next.sessionUrl.reset();
    updateRemoteControl(next);
    if (!on && !isRunning())
        return;
    control(QStringLiteral("remote_control"), {{QStringLiteral("enabled"), on}}, RemoteControlLimit,
            [this, on](const Expected<QByteArray, ChatControlError>& reply) {
                takeRemoteControlReply(on, reply);
            });
}

void ClaudeChat::takeRemoteControlReply(bool on,
                                        const Expected<QByteArray, ChatControlError>& reply)
{
    ChatRemoteControl next = m_remoteControl;
    if (!reply) {
        if (on)
            next.phase = ChatRemoteControl::Failed{reply.error().message};
        else
            next.phase = ChatRemoteControl::Off{};
    } else if (on) {
        JsonReader reader;
        const auto answer = reader.object(*reply);
        const QUrl url(answer ? answer->string("session_url").value_or(QString()) : QString());
        next.sessionUrl = url.isValid() && !url.isEmpty() ? std::optional(url) : std::nullopt;
        if (std::holds_alternative<ChatRemoteControl::Starting>(next.phase))
            next.phase = ChatRemoteControl::On{false};
    }
    updateRemoteControl(next);
}

} // namespace Bralto
