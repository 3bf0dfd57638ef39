// What each event does to a transcript.

#include "Chat/ChatTranscript.h"

#include "Base/Json.h"
#include "Chat/ChatNumbers.h"

#include <algorithm>

namespace Bralto {

using namespace ChatEvents;

/// Folds one event into a transcript and notes what changed.
class ChatTranscript::Reducer {
public:
    explicit Reducer(ChatTranscript& transcript)
        : m_it(transcript)
    {
    }

    [[nodiscard]] ChatTranscriptChange takeChange() { return std::move(m_change); }

    void operator()(const Initialized& event)
    {
        const ChatSessionInfo before = m_it.status;
        store(m_it.status.cliVersion, event.version);
        store(m_it.status.permissionMode, event.permissionMode);
        store(m_it.status.cwd, event.cwd);
        if (event.model)
            m_it.setModel(*event.model);
        noteStatus(before);
    }

    void operator()(const ModelNames& event)
    {
        for (auto at = event.names.begin(); at != event.names.end(); ++at) {
            if (!m_it.modelNames.contains(at.key()))
                m_it.modelNames.insert(at.key(), at.value());
        }
        const ChatSessionInfo before = m_it.status;
        if (before.model)
            m_it.setModel(*before.model);
        noteStatus(before);
    }

    void operator()(const Capabilities& event)
    {
        const ChatSessionInfo before = m_it.status;
        store(m_it.status.cliVersion, event.capabilities.version);
        store(m_it.status.permissionMode, event.capabilities.permissionMode);
        noteStatus(before);
    }

    void operator()(const PermissionModeChanged& event)
    {
        const ChatSessionInfo before = m_it.status;
        m_it.status.permissionMode = event.mode;
        noteStatus(before);
    }

    void operator()(const StreamStart& event)
    {
        m_it.m_streamingId = event.messageId;
        m_it.m_partial.clear();
        m_it.ensureMessage(event.messageId, event.date, m_change);
        m_it.rebuild(event.messageId, m_change);
    }

    void operator()(const StreamBlock& event)
    {
        if (!m_it.m_streamingId)
            return;
        m_it.m_partial.insert_or_assign(event.index,
                                        named(event.block, *m_it.m_streamingId, event.index));
        m_it.rebuild(*m_it.m_streamingId, m_change);
    }

    void operator()(const StreamDelta& event)
    {
        if (!m_it.m_streamingId)
            return;
        const auto partial = m_it.m_partial.find(event.index);
        if (partial != m_it.m_partial.end())
            m_it.appendToPartial(partial, event.text, m_change);
    }

    void operator()(const StreamStop&)
    {
        if (m_it.m_streamingId)
            m_it.endStreaming(m_change);
    }

    void operator()(const Assistant& event)
    {
        if (event.parent) {
            foldIntoChild(event, *event.parent);
            return;
        }
        m_it.ensureMessage(event.messageId, event.date, m_change);
        QList<ChatBlock>& finished = m_it.m_finished[event.messageId];
        for (const ChatBlock& block : event.blocks)
            finished.append(named(block, event.messageId, finished.size()));
        for (const ChatBlock& block : event.blocks) {
            const auto* call = std::get_if<ChatToolCall>(&block);
            if (call && (call->name == u"Agent" || call->name == u"Task"))
                startSubagent(*call);
        }
        if (event.contextTokens) {
            m_change.status |= m_it.status.contextTokens != event.contextTokens;
            m_it.status.contextTokens = event.contextTokens;
        }
        m_it.rebuild(event.messageId, m_change);
    }

    void operator()(const ToolResults& event)
    {
        if (event.parent) {
            foldIntoChild(event, *event.parent);
            return;
        }
        for (const ChatToolResult& result : event.results)
            attach(result);
    }

    void operator()(const User& event)
    {
        m_it.endAllStreaming(m_change);
        m_it.appendRow(event.message, m_change);
    }

    void operator()(const Notice& event)
    {
        if (event.parent) {
            foldIntoChild(event, *event.parent);
            return;
        }
        m_it.appendRow(ChatMessage{event.id,
                                   ChatRole::System,
                                   {ChatTextBlock{event.id + "-text", event.text}},
                                   event.date,
                                   false},
                       m_change);
    }

    void operator()(const TaskStarted& event)
    {
        ChatSubagent& agent = subagent(event.toolId, event.description);
        const ChatSubagent before = facts(agent);
        store(agent.taskId, event.taskId);
        agent.description = event.description.value_or(agent.description);
        store(agent.type, event.type);
        agent.isBackground = event.background;
        noteSubagent(before, agent);
    }

    void operator()(const TaskProgress& event)
    {
        ChatSubagent& agent = subagent(event.toolId, std::nullopt);
        const ChatSubagent before = facts(agent);
        store(agent.activity, event.activity);
        agent.toolUses = event.toolUses.value_or(agent.toolUses);
        agent.tokens = event.tokens.value_or(agent.tokens);
        noteSubagent(before, agent);
    }

    void operator()(const TaskEnded& event)
    {
        ChatSubagent& agent = subagent(event.toolId, std::nullopt);
        const ChatSubagent before = facts(agent);
        agent.status = event.failed ? ChatToolStatus::Failed : ChatToolStatus::Done;
        agent.summary = event.summary;
        agent.activity.reset();
        noteSubagent(before, agent);
        m_it.setOutcome(event.toolId, agent.status, event.summary, nullptr, m_change);
    }

    void operator()(const Result& event)
    {
        m_change.merge(m_it.finishTurn());
        const ChatSessionInfo before = m_it.status;
        ChatSessionInfo& info = m_it.status;
        if (event.costUSD) {
            m_it.runCost = *event.costUSD;
            info.costUSD = m_it.earlierCost + *event.costUSD;
        }
        if (event.tokens)
            info.totalTokens = saturatingSum(info.totalTokens, *event.tokens);
        store(info.contextWindow, contextWindow(event.contextWindows));
        noteStatus(before);
    }

    /// Everything else is the session's to handle.
    template <typename Event>
    void operator()(const Event&)
    {
    }

private:
    template <typename Value>
    static void store(std::optional<Value>& field, const std::optional<Value>& value)
    {
        if (value)
            field = value;
    }

    void noteStatus(const ChatSessionInfo& before) { m_change.status |= before != m_it.status; }

    /// A block under the id that it has in its message, streamed or finished; a tool call keeps
    /// its own.
    static ChatBlock named(ChatBlock block, const QString& messageId, qint64 index)
    {
        const auto name = [&](auto& content) {
            if constexpr (!std::is_same_v<std::decay_t<decltype(content)>, ChatToolCall>)
                content.id = messageId + u'-' + QString::number(index);
        };
        std::visit(name, block);
        return block;
    }

    /// What the current model's window is by a turn's report, if it tells.
    [[nodiscard]] std::optional<qint64> contextWindow(const QMap<QString, qint64>& windows) const
    {
        if (const auto& model = m_it.status.model) {
            if (const auto exact = windows.constFind(*model); exact != windows.cend())
                return *exact;
            // A short name serves a model with a suffix.
            for (auto at = windows.begin(); at != windows.end(); ++at) {
                if (model->startsWith(at.key()))
                    return at.value();
            }
        }
        if (m_it.status.contextWindow || windows.isEmpty())
            return std::nullopt;
        return *std::ranges::max_element(windows);
    }

    // Subagents

    /// The subagent's own facts, without what it said.
    static ChatSubagent facts(const ChatSubagent& agent)
    {
        return {agent.id,
                agent.taskId,
                agent.description,
                agent.type,
                agent.status,
                agent.activity,
                agent.toolUses,
                agent.tokens,
                agent.summary,
                agent.isBackground,
                {}};
    }

    void noteSubagent(const ChatSubagent& before, const ChatSubagent& agent)
    {
        m_change.subagents |= before != facts(agent);
    }

    /// The subagent of the call `id`, made if it isn't there.
    ChatSubagent& subagent(const QString& id, const std::optional<QString>& description)
    {
        const auto known = std::ranges::find(m_it.subagents, id, &ChatSubagent::id);
        if (known != m_it.subagents.end())
            return *known;
        ChatSubagent agent;
        agent.id = id;
        agent.description = description.value_or(QStringLiteral("Subagent"));
        m_it.subagents.push_back(std::move(agent));
        m_change.subagents = true;
        return m_it.subagents.back();
    }

    void startSubagent(const ChatToolCall& call)
    {
        JsonReader reader;
        const auto input = reader.object(call.inputJSON.toUtf8());
        ChatSubagent& agent =
            subagent(call.id, input ? input->string("description") : std::nullopt);
        if (!input)
            return;
        const ChatSubagent before = facts(agent);
        store(agent.type, input->string("subagent_type"));
        if (input->boolean("run_in_background") == true)
            agent.isBackground = true;
        noteSubagent(before, agent);
    }

    void attach(const ChatToolResult& result)
    {
        const auto outcome = result.isError ? ChatToolStatus::Failed : ChatToolStatus::Done;
        const auto agent = std::ranges::find(m_it.subagents, result.toolUseId, &ChatSubagent::id);
        if (agent != m_it.subagents.end()) {
            const ChatSubagent before = facts(*agent);
            if (result.isAsync || agent->isBackground) {
                // Such a result only says that the agent was started.
                agent->isBackground = true;
            } else {
                agent->status = outcome;
                agent->activity.reset();
                if (!agent->summary)
                    agent->summary = result.text;
            }
            noteSubagent(before, *agent);
        }
        m_it.setOutcome(result.toolUseId, outcome, result.text, &result.images, m_change);
    }

    /// Folds an event of a subagent into its own transcript and shows that.
    template <typename Event>
    void foldIntoChild(Event event, const QString& toolId)
    {
        auto child = std::ranges::find(m_it.m_children, toolId, &Child::toolId);
        if (child == m_it.m_children.end())
            child = m_it.m_children.insert(child, Child{toolId, {}});
        const std::size_t earlier = child->transcript.messages.size();
        event.parent.reset();
        const ChatTranscriptChange inner = child->transcript.apply(std::move(event));

        const std::vector<ChatMessage>& said = child->transcript.messages;
        ChatSubagent& agent = subagent(toolId, std::nullopt);
        if (agent.messages.size() == earlier) {
            agent.messages.resize(said.size());
            for (const std::size_t row : inner.messages)
                agent.messages[row] = said[row];
        } else {
            agent.messages = said;
        }
        m_change.subagents |= !inner.isEmpty();
        showActivity(agent);
    }

    /// A running subagent of which nothing else is known does what its last call says.
    void showActivity(ChatSubagent& agent)
    {
        if (agent.messages.empty() || agent.activity || agent.status != ChatToolStatus::Running)
            return;
        const QList<ChatBlock>& blocks = agent.messages.back().blocks;
        for (auto block = blocks.crbegin(); block != blocks.crend(); ++block) {
            if (const auto* call = std::get_if<ChatToolCall>(&*block)) {
                agent.activity = call->summary;
                m_change.subagents = true;
                return;
            }
        }
    }

    ChatTranscript& m_it;
    ChatTranscriptChange m_change;
};

ChatTranscriptChange ChatTranscript::apply(const ChatEvent& event)
{
    Reducer reducer(*this);
    std::visit(reducer, event);
    return reducer.takeChange();
}

} // namespace Bralto
