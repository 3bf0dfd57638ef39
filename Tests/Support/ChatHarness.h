#pragma once

#include "Chat/ClaudeChat.h"

#include "Tests/Support/FakeAgentLauncher.h"
#include "Tests/Support/FakeChatHost.h"
#include "Tests/Support/FixedClock.h"
#include "Tests/Support/ManualScheduler.h"

#include <QJsonArray>
#include <QThreadPool>

#include <gtest/gtest.h>

namespace Bralto {

/// Lines of the agent, as it writes them.
namespace AgentLine {

inline QByteArray compact(const QJsonObject& object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}
inline QByteArray init(const QString& mode = "default")
{
    return compact({{"type", "system"}, {"subtype", "init"}, {"permissionMode", mode}});
}
inline QByteArray assistant(const QString& id, const QString& text)
{
    const QJsonObject block{{"type", "text"}, {"text", text}};
    return compact({{"type", "assistant"},
                    {"message", QJsonObject{{"id", id}, {"content", QJsonArray{block}}}}});
}
inline QByteArray result(QJsonObject fields = {})
{
    fields["type"] = "result";
    if (!fields.contains("subtype"))
        fields["subtype"] = "success";
    return compact(fields);
}
inline QByteArray failure(const QString& text)
{
    return result({{"is_error", true}, {"result", text}});
}
inline QByteArray request(const QString& id, const QJsonObject& request)
{
    return compact({{"type", "control_request"}, {"request_id", id}, {"request", request}});
}
inline QByteArray permission(const QString& id, const QString& tool = "Bash",
                             const QJsonObject& input = {{"command", "ls"}})
{
    return request(id, {{"subtype", "can_use_tool"}, {"tool_name", tool}, {"input", input}});
}
inline QByteArray question(const QString& id, const QString& text = "Which?")
{
    const QJsonObject item{{"question", text},
                           {"options", QJsonArray{QJsonObject{{"label", "A"}}}}};
    return permission(id, "AskUserQuestion", {{"questions", QJsonArray{item}}});
}
inline QByteArray cancel(const QString& id)
{
    return compact({{"type", "control_cancel_request"}, {"request_id", id}});
}
inline QByteArray reply(const QString& id, const QJsonObject& payload = {})
{
    return compact(
        {{"type", "control_response"},
         {"response",
          QJsonObject{{"subtype", "success"}, {"request_id", id}, {"response", payload}}}});
}
inline QByteArray refusal(const QString& id, const QString& error)
{
    return compact(
        {{"type", "control_response"},
         {"response", QJsonObject{{"subtype", "error"}, {"request_id", id}, {"error", error}}}});
}

} // namespace AgentLine

/// A conversation in "/project" with everything around it faked.
class ChatHarness : public testing::Test {
protected:
    using Kind = ChatState::Kind;

    /// Nothing that a worker still reads outlives the test.
    ~ChatHarness() override { QThreadPool::globalInstance()->waitForDone(); }

    ClaudeChat& open(const std::optional<QString>& sessionId = std::nullopt)
    {
        m_chat = std::make_unique<ClaudeChat>(
            "/project", sessionId,
            ClaudeChat::Services{m_host, m_launcher, m_scheduler, m_clock, m_memory});
        return *m_chat;
    }
    /// A conversation whose agent runs a turn in the mode "default".
    ClaudeChat& working()
    {
        open().send("Hello");
        agent().sayLine(AgentLine::init());
        return *m_chat;
    }

    [[nodiscard]] ClaudeChat& chat() const { return *m_chat; }
    [[nodiscard]] FakeAgent& agent() const { return m_launcher.agent(); }

    /// The id of the last control request of this subtype.
    [[nodiscard]] QString requestId(const QString& subtype) const
    {
        return agent().lastWritten("control_request", subtype)["request_id"].toString();
    }
    void accept(const QString& subtype, const QJsonObject& payload = {})
    {
        agent().sayLine(AgentLine::reply(requestId(subtype), payload));
    }
    void refuse(const QString& subtype, const QString& error)
    {
        agent().sayLine(AgentLine::refusal(requestId(subtype), error));
    }

    /// The text of the last message of the program's own, empty if there is none.
    [[nodiscard]] QString lastNote() const
    {
        const auto& messages = m_chat->transcript().messages;
        if (messages.empty() || messages.back().role != ChatRole::System)
            return {};
        return std::get<ChatTextBlock>(messages.back().blocks.first()).text;
    }

    FakeChatHost m_host;
    FakeAgentLauncher m_launcher;
    ManualScheduler m_scheduler;
    FixedClock m_clock;
    ChatCommandMemory m_memory;
    std::unique_ptr<ClaudeChat> m_chat;
};

} // namespace Bralto
