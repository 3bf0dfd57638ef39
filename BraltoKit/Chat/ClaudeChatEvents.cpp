// What the agent says, event by event. Everything that isn't named here is the transcript's alone.

#include "Chat/ClaudeChat.h"

#include "Base/Json.h"
#include "Chat/ChatProtocol.h"

#include <utility>

namespace Bralto {

void ClaudeChat::handle(const std::vector<ChatEvent>& events)
{
    const int generation = m_generation;
    m_isInBatch = true;
    for (const ChatEvent& event : events) {
        std::visit([this](const auto& each) { take(each); }, event);
        if (generation != m_generation)
            break; // Somebody who heard of it stopped the process: the rest is stale.
    }
    m_isInBatch = false;
    publish();
    if (std::exchange(m_turnEnded, false))
        emit turnEnded();
}

// A sign that the agent works on a turn.
void ClaudeChat::takeActivity(const ChatEvent& event)
{
    change(m_transcript.apply(event));
    if (!m_pendingQuestion)
        setState(ChatState::Kind::Working);
}

void ClaudeChat::take(const ChatEvents::Initialized& event)
{
    takeActivity(event);
}

void ClaudeChat::take(const ChatEvents::StreamStart& event)
{
    takeActivity(event);
}

void ClaudeChat::take(const ChatEvents::Assistant& event)
{
    takeActivity(event);
}

void ClaudeChat::take(const ChatEvents::RateLimits& event)
{
    m_services.host.ingestRateLimits(event.info, m_services.clock.now());
}

// Requests of the agent

void ClaudeChat::take(const ChatEvents::Question& event)
{
    m_pendingInput = event.input;
    setPendingQuestion(event.question);
    if (m_pendingQuestion) // Who heard of it may have stopped everything.
        setState(ChatState::Kind::Waiting);
}

void ClaudeChat::take(const ChatEvents::Permission& event)
{
    // A mode that isn't known yet counts as permission: the mode comes before any tool.
    const auto& mode = m_transcript.status.permissionMode;
    if (!mode || *mode == QStringLiteral("bypassPermissions")) {
        write(ChatProtocol::allow(event.requestId, event.input, std::nullopt));
        return;
    }
    JsonReader reader;
    const QString summary =
        ChatProtocol::summary(event.tool, reader.object(event.input), m_services.host.home());
    setPendingPermission(ChatPermission{event.requestId, event.tool, summary, event.input});
    if (m_pendingPermission)
        setState(ChatState::Kind::Waiting);
}

void ClaudeChat::take(const ChatEvents::UnsupportedRequest& event)
{
    write(ChatProtocol::unsupported(event.requestId));
}

void ClaudeChat::take(const ChatEvents::CancelledRequest& event)
{
    const bool isQuestion = m_pendingQuestion && m_pendingQuestion->id == event.requestId;
    const bool isPermission = m_pendingPermission && m_pendingPermission->id == event.requestId;
    if (isQuestion)
        setPendingQuestion(std::nullopt);
    if (isPermission)
        setPendingPermission(std::nullopt);
    if ((isQuestion || isPermission) && !m_pendingQuestion && !m_pendingPermission &&
        m_state.kind == ChatState::Kind::Waiting)
        setState(ChatState::Kind::Working);
}

// The turn's end

void ClaudeChat::take(const ChatEvents::Result& event)
{
    change(m_transcript.apply(event));
    if (event.error && !m_isInterrupting) {
        setState({ChatState::Kind::Failed, *event.error});
    } else if (event.queued > 0) {
        setState(ChatState::Kind::Working);
        return;
    } else if (!m_pendingQuestion && !m_pendingPermission) {
        setState(ChatState::Kind::Idle);
        m_turnEnded = true;
    }
    if (event.queued <= 0)
        m_isInterrupting = false;
}

// What the agent says of itself

void ClaudeChat::take(const ChatEvents::Capabilities& event)
{
    const ChatCapabilities& capabilities = event.capabilities;
    change(m_transcript.apply(event));
    setCommands(capabilities.commands);
    if (m_models != capabilities.models) {
        m_models = capabilities.models;
        emit modelsChanged();
    }
    if (m_plan != capabilities.plan) {
        m_plan = capabilities.plan;
        emit planChanged();
    }
    ChatRemoteControl remoteControl = m_remoteControl;
    remoteControl.isAvailable = capabilities.remoteControlAvailable;
    updateRemoteControl(remoteControl);
    if (capabilities.remoteControlAutoEnable && capabilities.remoteControlAvailable &&
        std::holds_alternative<ChatRemoteControl::Off>(m_remoteControl.phase) &&
        !m_services.host.isDemo())
        setRemoteControl(true);
    refreshSettings();
}

void ClaudeChat::take(const ChatEvents::Commands& event)
{
    setCommands(event.commands);
}

void ClaudeChat::take(const ChatEvents::RemoteControl& event)
{
    ChatRemoteControl remoteControl = m_remoteControl;
    remoteControl.apply(event.state, event.detail);
    updateRemoteControl(remoteControl);
}

void ClaudeChat::take(const ChatEvents::ControlResponse& event)
{
    if (event.error)
        finishReply(event.requestId, Unexpected{ChatControlError{*event.error}});
    else
        finishReply(event.requestId, event.payload.value_or(QByteArrayLiteral("{}")));
}

} // namespace Bralto
