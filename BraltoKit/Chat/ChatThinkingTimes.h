#pragma once

#include "Chat/ChatMessage.h"

#include <QHash>

namespace Bralto {

/// How long the agent thought. The stream doesn't say; whoever watches it measures from the first
/// sight of a thinking block that is still streaming to the moment when something follows it.
class ChatThinkingTimes {
public:
    /// Looks at a message that changed, at the time `now`.
    void observe(const ChatMessage& message, const QDateTime& now);

    /// Whole seconds, 1 at the least; absent if the block's thinking wasn't watched to its end.
    [[nodiscard]] std::optional<qint64> seconds(const QString& blockId) const;

    void clear() { m_spans.clear(); }

    /// The words of a thinking row.
    [[nodiscard]] static QString title(bool isThinking, std::optional<qint64> seconds);
    /// Whether the block at `index` is what the agent thinks right now.
    [[nodiscard]] static bool isThinking(const ChatMessage& message, qsizetype index);

private:
    struct Span {
        QDateTime start;
        QDateTime end; ///< Invalid while the agent thinks.
    };

    QHash<QString, Span> m_spans;
};

} // namespace Bralto
