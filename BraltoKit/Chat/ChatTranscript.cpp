// Messages, streams and tool calls: the bookkeeping that keeps both reports of a message together.

#include "Chat/ChatTranscript.h"

#include "Chat/ChatProtocol.h"

#include <QSet>

#include <algorithm>

namespace Bralto {

namespace {

/// The text of a block that grows while it streams; null for a picture.
QString* streamedText(ChatBlock& block)
{
    if (auto* text = std::get_if<ChatTextBlock>(&block))
        return &text->text;
    if (auto* thinking = std::get_if<ChatThinkingBlock>(&block))
        return &thinking->text;
    if (auto* call = std::get_if<ChatToolCall>(&block))
        return &call->inputJSON;
    return nullptr;
}

bool isShown(const ChatBlock& block)
{
    if (const auto* text = std::get_if<ChatTextBlock>(&block))
        return !text->text.isEmpty();
    if (const auto* thinking = std::get_if<ChatThinkingBlock>(&block))
        return !thinking->text.isEmpty();
    return true;
}

bool hasOutcome(const ChatToolCall& call)
{
    return call.status != ChatToolStatus::Running || call.resultText ||
           !call.resultImages.isEmpty();
}

/// Results run to megabytes, and most often both calls share one text.
bool isSameText(const std::optional<QString>& left, const std::optional<QString>& right)
{
    return left && right && left->constData() == right->constData() ? left->size() == right->size()
                                                                    : left == right;
}

bool haveSameOutcome(const ChatToolCall& left, const ChatToolCall& right)
{
    return left.status == right.status && isSameText(left.resultText, right.resultText) &&
           left.resultImages == right.resultImages;
}

std::optional<qsizetype> indexOfCall(const QList<ChatBlock>& blocks, const QString& callId)
{
    for (qsizetype at = 0; at < blocks.size(); ++at) {
        const auto* call = std::get_if<ChatToolCall>(&blocks.at(at));
        if (call && call->id == callId)
            return at;
    }
    return std::nullopt;
}

void takeOutcome(ChatToolCall& call, const ChatToolCall& from)
{
    call.status = from.status;
    call.resultText = from.resultText;
    call.resultImages = from.resultImages;
}

/// Gives the calls in `blocks` the outcomes that the same calls in `shown` have. The list is
/// touched only where something differs, so that it stays shared.
void keepOutcomes(QList<ChatBlock>& blocks, const QList<ChatBlock>& shown)
{
    QHash<QString, const ChatToolCall*> outcomes;
    for (const ChatBlock& block : shown) {
        const auto* call = std::get_if<ChatToolCall>(&block);
        if (call && hasOutcome(*call))
            outcomes.insert(call->id, call);
    }
    if (outcomes.isEmpty())
        return;
    for (qsizetype at = 0; at < blocks.size(); ++at) {
        const auto* call = std::get_if<ChatToolCall>(&blocks.at(at));
        const auto* outcome = call ? outcomes.value(call->id) : nullptr;
        if (outcome && !haveSameOutcome(*call, *outcome))
            takeOutcome(std::get<ChatToolCall>(blocks[at]), *outcome);
    }
}

} // namespace

void ChatTranscriptChange::touch(std::size_t row)
{
    const auto at = std::ranges::lower_bound(messages, row);
    if (at == messages.end() || *at != row)
        messages.insert(at, row);
}

void ChatTranscriptChange::merge(const ChatTranscriptChange& other)
{
    std::vector<std::size_t> rows;
    rows.reserve(messages.size() + other.messages.size());
    std::ranges::set_union(messages, other.messages, std::back_inserter(rows));
    messages = std::move(rows);
    messageList |= other.messageList;
    subagents |= other.subagents;
    status |= other.status;
}

ChatTranscriptChange ChatTranscript::append(ChatMessage message)
{
    ChatTranscriptChange change;
    appendRow(std::move(message), change);
    return change;
}

ChatTranscriptChange ChatTranscript::endAllStreaming()
{
    ChatTranscriptChange change;
    endAllStreaming(change);
    return change;
}

ChatTranscriptChange ChatTranscript::finishTurn()
{
    ChatTranscriptChange change;
    endAllStreaming(change);
    for (Child& child : m_children)
        child.transcript.endAllStreaming();
    return change;
}

ChatTranscriptChange ChatTranscript::prepend(ChatTranscript history)
{
    const auto isKnownMessage = [&](const ChatMessage& message) {
        return m_rows.contains(message.id);
    };
    const auto isKnownSubagent = [&](const ChatSubagent& subagent) {
        return std::ranges::find(subagents, subagent.id, &ChatSubagent::id) != subagents.end();
    };
    const auto isKnownChild = [&](const Child& child) {
        return std::ranges::find(m_children, child.toolId, &Child::toolId) != m_children.end();
    };
    std::erase_if(history.messages, isKnownMessage);
    std::erase_if(history.subagents, isKnownSubagent);
    std::erase_if(history.m_children, isKnownChild);

    ChatTranscriptChange change;
    change.messageList = !history.messages.empty();
    change.subagents = !history.subagents.empty();
    std::ranges::move(messages, std::back_inserter(history.messages));
    messages = std::move(history.messages);
    std::ranges::move(subagents, std::back_inserter(history.subagents));
    subagents = std::move(history.subagents);
    std::ranges::move(history.m_children, std::back_inserter(m_children));
    for (auto at = history.m_finished.begin(); at != history.m_finished.end(); ++at) {
        if (!m_finished.contains(at.key()))
            m_finished.insert(at.key(), at.value());
    }
    m_mayStream |= history.m_mayStream;

    m_rows.clear();
    m_callRows.clear();
    for (std::size_t row = 0; row < messages.size(); ++row)
        indexRow(row);
    return change;
}

void ChatTranscript::setModel(const QString& model)
{
    status.model = model;
    const auto known = modelNames.constFind(model);
    status.modelName = known == modelNames.cend() ? ChatProtocol::displayName(model) : *known;
}

std::optional<std::size_t> ChatTranscript::rowOf(const QString& messageId) const
{
    if (!messages.empty() && messages.back().id == messageId)
        return messages.size() - 1;
    const auto row = m_rows.constFind(messageId);
    return row == m_rows.cend() ? std::nullopt : std::optional(*row);
}

std::optional<ChatTranscript::Place> ChatTranscript::findCall(const QString& callId)
{
    const auto hint = m_callRows.find(callId);
    if (hint == m_callRows.end())
        return std::nullopt;
    // Rows behind the hint never showed the call. The row itself may have lost it with a stream
    // that was abandoned.
    for (std::size_t row = *hint + 1; row-- > 0;) {
        if (const auto block = indexOfCall(messages[row].blocks, callId)) {
            *hint = row;
            return Place{row, *block};
        }
    }
    m_callRows.erase(hint);
    return std::nullopt;
}

void ChatTranscript::indexRow(std::size_t row)
{
    m_rows.insert(messages[row].id, row);
    for (const ChatBlock& block : std::as_const(messages[row].blocks)) {
        if (const auto* call = std::get_if<ChatToolCall>(&block)) {
            std::size_t& last = m_callRows[call->id];
            last = std::max(last, row);
        }
    }
}

void ChatTranscript::appendRow(ChatMessage message, ChatTranscriptChange& change)
{
    m_mayStream |= message.isStreaming;
    messages.push_back(std::move(message));
    indexRow(messages.size() - 1);
    change.messageList = true;
    change.touch(messages.size() - 1);
}

void ChatTranscript::ensureMessage(const QString& id, const QDateTime& date,
                                   ChatTranscriptChange& change)
{
    if (!rowOf(id))
        appendRow(ChatMessage{id, ChatRole::Assistant, {}, date, false}, change);
}

/// The partial blocks of the message from here on are not among its finished ones yet.
ChatTranscript::Partials::const_iterator ChatTranscript::firstShownPartial(const QString& id) const
{
    const auto finished = m_finished.constFind(id);
    return m_partial.lower_bound(finished == m_finished.cend() ? 0 : finished->size());
}

void ChatTranscript::rebuild(const QString& id, ChatTranscriptChange& change)
{
    const auto row = rowOf(id);
    if (!row)
        return;
    QList<ChatBlock> blocks = m_finished.value(id);
    const bool isStreaming = m_streamingId == id;
    if (isStreaming) {
        for (auto partial = firstShownPartial(id); partial != m_partial.cend(); ++partial)
            blocks.append(partial->second);
    }
    if (!std::ranges::all_of(std::as_const(blocks), isShown))
        blocks.removeIf([](const ChatBlock& block) { return !isShown(block); });
    ChatMessage& message = messages[*row];
    keepOutcomes(blocks, message.blocks);
    m_needsRebuild &= !isStreaming;

    if (message.isStreaming == isStreaming && message.blocks == blocks)
        return;
    message.blocks = std::move(blocks);
    message.isStreaming = isStreaming;
    m_mayStream |= isStreaming;
    indexRow(*row);
    change.touch(*row);
}

void ChatTranscript::appendToPartial(Partials::iterator partial, const QString& text,
                                     ChatTranscriptChange& change)
{
    QString* const streamed = streamedText(partial->second);
    QString* const shown = m_needsRebuild ? nullptr : shownText(partial);
    if (!streamed || !shown) {
        if (streamed)
            streamed->append(text);
        rebuild(*m_streamingId, change);
        return;
    }
    // The message shares this text. It lets go of it first, so that the text grows in place.
    shown->clear();
    streamed->append(text);
    *shown = *streamed;
    change.touch(*rowOf(*m_streamingId));
}

/// The text of a partial block in the message that shows it, null if it isn't shown. Nothing
/// shown stands behind the partial blocks, so the place is counted from the end.
QString* ChatTranscript::shownText(Partials::const_iterator partial)
{
    const auto row = rowOf(*m_streamingId);
    const auto first = firstShownPartial(*m_streamingId);
    if (!row || first == m_partial.cend() || partial->first < first->first ||
        !isShown(partial->second))
        return nullptr;
    const auto behind = std::count_if(std::next(partial), m_partial.cend(),
                                      [](const auto& entry) { return isShown(entry.second); });
    QList<ChatBlock>& blocks = messages[*row].blocks;
    const qsizetype at = blocks.size() - 1 - behind;
    if (at < 0 || blocks.at(at).index() != partial->second.index() ||
        blockId(blocks.at(at)) != blockId(partial->second))
        return nullptr;
    return streamedText(blocks[at]);
}

void ChatTranscript::endStreaming(ChatTranscriptChange& change)
{
    const QString id = *m_streamingId;
    const auto first = firstShownPartial(id);
    QList<ChatBlock>& finished = m_finished[id];
    for (auto partial = first; partial != m_partial.cend(); ++partial)
        finished.append(partial->second);
    m_partial.clear();
    m_streamingId.reset();
    rebuild(id, change);
}

void ChatTranscript::endAllStreaming(ChatTranscriptChange& change)
{
    if (m_streamingId)
        endStreaming(change);
    if (!m_mayStream)
        return;
    for (std::size_t row = 0; row < messages.size(); ++row) {
        if (std::exchange(messages[row].isStreaming, false))
            change.touch(row);
    }
    m_mayStream = false;
}

/// Ends a call, in the message and among its finished blocks. Text and pictures stay as they were
/// where none are given.
void ChatTranscript::setOutcome(const QString& callId, ChatToolStatus callStatus,
                                const std::optional<QString>& text, const QList<ChatImage>* images,
                                ChatTranscriptChange& change)
{
    const auto place = findCall(callId);
    if (!place)
        return;
    QList<ChatBlock>& shown = messages[place->row].blocks;
    const auto finished = m_finished.find(messages[place->row].id);
    const bool isFinished = finished != m_finished.end();
    const bool isShared = isFinished && finished->constData() == shown.constData();

    const auto& call = std::get<ChatToolCall>(shown.at(place->block));
    ChatToolCall outcome;
    outcome.status = callStatus;
    outcome.resultText = images || text ? text : call.resultText;
    outcome.resultImages = images ? *images : call.resultImages;
    if (!haveSameOutcome(call, outcome)) {
        takeOutcome(std::get<ChatToolCall>(shown[place->block]), outcome);
        m_needsRebuild = true;
        change.touch(place->row);
    }
    if (!isFinished)
        return;
    if (const auto block = indexOfCall(*finished, callId))
        takeOutcome(std::get<ChatToolCall>((*finished)[*block]), outcome);
    if (isShared)
        shown = *finished;
}

} // namespace Bralto
