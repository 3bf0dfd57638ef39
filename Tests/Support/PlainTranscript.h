#pragma once

/// @file
/// The rules of a transcript word by word, with no thought for speed: what `ChatTranscript` is
/// compared to when the events are nobody's.

#include "Base/Json.h"
#include "Chat/ChatNumbers.h"
#include "Chat/ChatProtocol.h"
#include "Chat/ChatTranscript.h"

#include <algorithm>
#include <map>

namespace Bralto {

class PlainTranscript {
public:
    std::vector<ChatMessage> messages;
    std::vector<ChatSubagent> subagents;
    ChatSessionInfo status;

    void apply(const ChatEvent& event)
    {
        std::visit([this](const auto& content) { fold(content); }, event);
    }

    void finishTurn()
    {
        endAllStreaming();
        for (auto& [id, child] : m_children)
            child.endAllStreaming();
    }

private:
    // Messages

    ChatMessage* find(const QString& id)
    {
        const auto at = std::find_if(messages.rbegin(), messages.rend(),
                                     [&](const ChatMessage& message) { return message.id == id; });
        return at == messages.rend() ? nullptr : &*at;
    }

    void ensureMessage(const QString& id, const QDateTime& date)
    {
        if (!find(id))
            messages.push_back({id, ChatRole::Assistant, {}, date, false});
    }

    QList<ChatBlock> open(const QString& id) const
    {
        QList<ChatBlock> blocks;
        if (m_streamingId != id)
            return blocks;
        for (const auto& [index, block] : m_partial) {
            if (index >= m_finished.value(id).size())
                blocks.append(block);
        }
        return blocks;
    }

    static bool isShown(const ChatBlock& block)
    {
        if (const auto* text = std::get_if<ChatTextBlock>(&block))
            return !text->text.isEmpty();
        if (const auto* thinking = std::get_if<ChatThinkingBlock>(&block))
            return !thinking->text.isEmpty();
        return true;
    }

    void rebuild(const QString& id)
    {
        ChatMessage* const message = find(id);
        if (!message)
            return;
        std::map<QString, ChatToolCall> shown;
        for (const ChatBlock& block : message->blocks) {
            if (const auto* call = std::get_if<ChatToolCall>(&block)) {
                if (call->status != ChatToolStatus::Running || call->resultText ||
                    !call->resultImages.isEmpty())
                    shown[call->id] = *call;
            }
        }
        QList<ChatBlock> blocks;
        for (ChatBlock block : m_finished.value(id) + open(id)) {
            auto* call = std::get_if<ChatToolCall>(&block);
            if (call && shown.contains(call->id)) {
                call->status = shown[call->id].status;
                call->resultText = shown[call->id].resultText;
                call->resultImages = shown[call->id].resultImages;
            }
            if (isShown(block))
                blocks.append(block);
        }
        message->blocks = blocks;
        message->isStreaming = m_streamingId == id;
    }

    void endStreaming()
    {
        const QString id = *m_streamingId;
        m_finished[id] += open(id);
        m_partial.clear();
        m_streamingId.reset();
        rebuild(id);
    }

    void endAllStreaming()
    {
        if (m_streamingId)
            endStreaming();
        for (ChatMessage& message : messages)
            message.isStreaming = false;
    }

    static ChatToolCall* findCall(QList<ChatBlock>& blocks, const QString& id)
    {
        for (ChatBlock& block : blocks) {
            auto* call = std::get_if<ChatToolCall>(&block);
            if (call && call->id == id)
                return call;
        }
        return nullptr;
    }

    template <typename Change>
    void updateCall(const QString& id, Change change)
    {
        for (auto message = messages.rbegin(); message != messages.rend(); ++message) {
            ChatToolCall* const call = findCall(message->blocks, id);
            if (!call)
                continue;
            change(*call);
            if (m_finished.contains(message->id)) {
                if (ChatToolCall* const finished = findCall(m_finished[message->id], id))
                    change(*finished);
            }
            return;
        }
    }

    static ChatBlock named(ChatBlock block, const QString& messageId, qint64 index)
    {
        const QString id = messageId + u'-' + QString::number(index);
        if (auto* text = std::get_if<ChatTextBlock>(&block))
            text->id = id;
        if (auto* thinking = std::get_if<ChatThinkingBlock>(&block))
            thinking->id = id;
        if (auto* image = std::get_if<ChatImageBlock>(&block))
            image->id = id;
        return block;
    }

    // Subagents

    ChatSubagent& subagent(const QString& id, const std::optional<QString>& description)
    {
        for (ChatSubagent& agent : subagents) {
            if (agent.id == id)
                return agent;
        }
        ChatSubagent agent;
        agent.id = id;
        agent.description = description.value_or(QStringLiteral("Subagent"));
        subagents.push_back(agent);
        return subagents.back();
    }

    template <typename Event>
    bool foldIntoChild(Event event)
    {
        if (!event.parent)
            return false;
        const QString toolId = *event.parent;
        event.parent.reset();
        PlainTranscript& child = m_children[toolId];
        child.apply(event);
        ChatSubagent& agent = subagent(toolId, std::nullopt);
        agent.messages = child.messages;
        if (child.messages.empty() || agent.status != ChatToolStatus::Running || agent.activity)
            return true;
        const QList<ChatBlock>& blocks = child.messages.back().blocks;
        for (auto block = blocks.rbegin(); block != blocks.rend(); ++block) {
            if (const auto* call = std::get_if<ChatToolCall>(&*block)) {
                agent.activity = call->summary;
                break;
            }
        }
        return true;
    }

    // Events

    template <typename Event>
    void fold(const Event&)
    {
    }

    void fold(const ChatEvents::StreamStart& event)
    {
        m_streamingId = event.messageId;
        m_partial.clear();
        ensureMessage(event.messageId, event.date);
        rebuild(event.messageId);
    }

    void fold(const ChatEvents::StreamBlock& event)
    {
        if (!m_streamingId)
            return;
        m_partial[event.index] = named(event.block, *m_streamingId, event.index);
        rebuild(*m_streamingId);
    }

    void fold(const ChatEvents::StreamDelta& event)
    {
        if (!m_streamingId || !m_partial.contains(event.index))
            return;
        ChatBlock& block = m_partial[event.index];
        if (auto* text = std::get_if<ChatTextBlock>(&block))
            text->text += event.text;
        if (auto* thinking = std::get_if<ChatThinkingBlock>(&block))
            thinking->text += event.text;
        if (auto* call = std::get_if<ChatToolCall>(&block))
            call->inputJSON += event.text;
        rebuild(*m_streamingId);
    }

    void fold(const ChatEvents::StreamStop&)
    {
        if (m_streamingId)
            endStreaming();
    }

    void fold(const ChatEvents::Assistant& event)
    {
        if (foldIntoChild(event))
            return;
        ensureMessage(event.messageId, event.date);
        QList<ChatBlock>& finished = m_finished[event.messageId];
        for (const ChatBlock& block : event.blocks)
            finished.append(named(block, event.messageId, finished.size()));
        for (const ChatBlock& block : event.blocks) {
            const auto* call = std::get_if<ChatToolCall>(&block);
            if (call && (call->name == u"Agent" || call->name == u"Task"))
                start(*call);
        }
        if (event.contextTokens)
            status.contextTokens = event.contextTokens;
        rebuild(event.messageId);
    }

    void start(const ChatToolCall& call)
    {
        JsonReader reader;
        const auto input = reader.object(call.inputJSON.toUtf8());
        ChatSubagent& agent =
            subagent(call.id, input ? input->string("description") : std::nullopt);
        if (input && input->string("subagent_type"))
            agent.type = input->string("subagent_type");
        if (input && input->boolean("run_in_background") == true)
            agent.isBackground = true;
    }

    void fold(const ChatEvents::ToolResults& event)
    {
        if (foldIntoChild(event))
            return;
        for (const ChatToolResult& result : event.results) {
            const auto outcome = result.isError ? ChatToolStatus::Failed : ChatToolStatus::Done;
            for (ChatSubagent& agent : subagents) {
                if (agent.id != result.toolUseId)
                    continue;
                if (result.isAsync || agent.isBackground) {
                    agent.isBackground = true;
                } else {
                    agent.status = outcome;
                    agent.activity.reset();
                    if (!agent.summary)
                        agent.summary = result.text;
                }
            }
            updateCall(result.toolUseId, [&](ChatToolCall& call) {
                call.status = outcome;
                call.resultText = result.text;
                call.resultImages = result.images;
            });
        }
    }

    void fold(const ChatEvents::User& event)
    {
        endAllStreaming();
        messages.push_back(event.message);
    }

    void fold(const ChatEvents::Notice& event)
    {
        if (foldIntoChild(event))
            return;
        messages.push_back({event.id,
                            ChatRole::System,
                            {ChatTextBlock{event.id + "-text", event.text}},
                            event.date,
                            false});
    }

    void fold(const ChatEvents::TaskStarted& event)
    {
        ChatSubagent& agent = subagent(event.toolId, event.description);
        if (event.taskId)
            agent.taskId = event.taskId;
        if (event.description)
            agent.description = *event.description;
        if (event.type)
            agent.type = event.type;
        agent.isBackground = event.background;
    }

    void fold(const ChatEvents::TaskProgress& event)
    {
        ChatSubagent& agent = subagent(event.toolId, std::nullopt);
        if (event.activity)
            agent.activity = event.activity;
        if (event.toolUses)
            agent.toolUses = *event.toolUses;
        if (event.tokens)
            agent.tokens = *event.tokens;
    }

    void fold(const ChatEvents::TaskEnded& event)
    {
        ChatSubagent& agent = subagent(event.toolId, std::nullopt);
        agent.status = event.failed ? ChatToolStatus::Failed : ChatToolStatus::Done;
        agent.summary = event.summary;
        agent.activity.reset();
        updateCall(event.toolId, [&](ChatToolCall& call) {
            call.status = event.failed ? ChatToolStatus::Failed : ChatToolStatus::Done;
            if (event.summary)
                call.resultText = event.summary;
        });
    }

    void nameModel()
    {
        if (status.model)
            status.modelName =
                m_modelNames.value(*status.model, ChatProtocol::displayName(*status.model));
    }

    void fold(const ChatEvents::Initialized& event)
    {
        if (event.version)
            status.cliVersion = event.version;
        if (event.permissionMode)
            status.permissionMode = event.permissionMode;
        if (event.cwd)
            status.cwd = event.cwd;
        if (event.model) {
            status.model = event.model;
            nameModel();
        }
    }

    void fold(const ChatEvents::ModelNames& event)
    {
        for (const QString& model : event.names.keys()) {
            if (!m_modelNames.contains(model))
                m_modelNames[model] = event.names[model];
        }
        nameModel();
    }

    void fold(const ChatEvents::Capabilities& event)
    {
        if (event.capabilities.version)
            status.cliVersion = event.capabilities.version;
        if (event.capabilities.permissionMode)
            status.permissionMode = event.capabilities.permissionMode;
    }

    void fold(const ChatEvents::PermissionModeChanged& event)
    {
        status.permissionMode = event.mode;
    }

    void fold(const ChatEvents::Result& event)
    {
        finishTurn();
        if (event.costUSD)
            status.costUSD = *event.costUSD;
        if (event.tokens)
            status.totalTokens = saturatingSum(status.totalTokens, *event.tokens);
        const auto& windows = event.contextWindows;
        if (status.model && windows.contains(*status.model)) {
            status.contextWindow = windows[*status.model];
            return;
        }
        for (const QString& key : windows.keys()) {
            if (status.model && status.model->startsWith(key)) {
                status.contextWindow = windows[key];
                return;
            }
        }
        if (!status.contextWindow && !windows.isEmpty())
            status.contextWindow = *std::max_element(windows.begin(), windows.end());
    }

    QHash<QString, QList<ChatBlock>> m_finished;
    std::map<qint64, ChatBlock> m_partial;
    std::optional<QString> m_streamingId;
    QMap<QString, QString> m_modelNames;
    std::map<QString, PlainTranscript> m_children;
};

/// Applies the same events to both, and finds the first difference.
class TranscriptComparison {
public:
    /// Nothing if everything is as it must be, else what isn't.
    std::optional<QString> apply(const ChatEvent& event)
    {
        const std::vector<ChatMessage> before = m_transcript.messages;
        const std::vector<ChatSubagent> agentsBefore = m_transcript.subagents;
        const ChatSessionInfo statusBefore = m_transcript.status;
        const ChatTranscriptChange change = m_transcript.apply(event);
        m_plain.apply(event);

        if (m_transcript.messages != m_plain.messages)
            return QStringLiteral("Other messages");
        if (m_transcript.subagents != m_plain.subagents)
            return QStringLiteral("Other subagents");
        if (m_transcript.status != m_plain.status)
            return QStringLiteral("Another status");
        if (change.status != (m_transcript.status != statusBefore))
            return QStringLiteral("A change of status that is none, or an untold one");
        if (!change.subagents && m_transcript.subagents != agentsBefore)
            return QStringLiteral("An untold change of subagents");
        if (change.messageList != (before.size() != m_transcript.messages.size()))
            return QStringLiteral("An untold message");
        return rowsThatDiffer(before, change);
    }

private:
    std::optional<QString> rowsThatDiffer(const std::vector<ChatMessage>& before,
                                          const ChatTranscriptChange& change) const
    {
        if (!std::is_sorted(change.messages.begin(), change.messages.end()))
            return QStringLiteral("Rows out of order");
        for (std::size_t row = 0; row < m_transcript.messages.size(); ++row) {
            const bool differs = row >= before.size() || before[row] != m_transcript.messages[row];
            const bool isTold =
                std::binary_search(change.messages.begin(), change.messages.end(), row);
            if (differs && !isTold)
                return QStringLiteral("An untold change of row %1").arg(row);
        }
        return std::nullopt;
    }

    ChatTranscript m_transcript;
    PlainTranscript m_plain;
};

} // namespace Bralto
