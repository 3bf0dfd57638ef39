#pragma once

#include "Chat/ChatThinkingTimes.h"
#include "Views/Chat/ChatCanvas.h"
#include "Views/Chat/ChatRows.h"

namespace Bralto {

/// Lays rows out: it picks the builder for a row's kind and adds the room around it.
class ChatRowBuilder {
public:
    struct Content {
        const ChatTranscript& transcript;
        const ChatThinkingTimes& thinking;
        const std::optional<ChatWorkingRow>& working;
        const QStringList& banner;
    };

    ChatRowBuilder(const ChatCanvasStyle& style, const Content& content, double width)
        : m_style(style)
        , m_content(content)
        , m_width(width)
    {
    }

    /// The layout of `row` for the builder's width. What the row's old layout has that still holds
    /// is taken over.
    [[nodiscard]] ChatRowLayout build(const ChatRow& row) const;

private:
    [[nodiscard]] double draw(ChatCanvas& canvas, const ChatRow& row, const QPointF& at) const;
    [[nodiscard]] ChatRowLayout buildReply(const ChatRow& row) const;
    [[nodiscard]] const ChatSubagent* findAgent(const QString& callId) const;

    const ChatCanvasStyle& m_style;
    const Content& m_content;
    double m_width;
};

} // namespace Bralto
