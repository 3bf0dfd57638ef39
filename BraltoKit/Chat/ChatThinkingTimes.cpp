#include "Chat/ChatThinkingTimes.h"

namespace Bralto {

bool ChatThinkingTimes::isThinking(const ChatMessage& message, qsizetype index)
{
    return message.isStreaming && index == message.blocks.size() - 1;
}

void ChatThinkingTimes::observe(const ChatMessage& message, const QDateTime& now)
{
    for (qsizetype i = 0; i < message.blocks.size(); ++i) {
        const auto* block = std::get_if<ChatThinkingBlock>(&message.blocks[i]);
        if (block == nullptr)
            continue;
        if (isThinking(message, i)) {
            if (!m_spans.contains(block->id))
                m_spans.insert(block->id, {now, {}});
        } else if (const auto span = m_spans.find(block->id);
                   span != m_spans.end() && !span->end.isValid()) {
            span->end = now;
        }
    }
}

std::optional<qint64> ChatThinkingTimes::seconds(const QString& blockId) const
{
    const auto span = m_spans.constFind(blockId);
    if (span == m_spans.constEnd() || !span->end.isValid())
        return std::nullopt;
    return std::max<qint64>(1, (span->start.msecsTo(span->end) + 500) / 1000);
}

QString ChatThinkingTimes::title(bool isThinking, std::optional<qint64> seconds)
{
    if (isThinking)
        return QStringLiteral("Thinking…");
    return seconds ? QStringLiteral("Thought for %1 s").arg(*seconds) : QStringLiteral("Thought");
}

} // namespace Bralto
