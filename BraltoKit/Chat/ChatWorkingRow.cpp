#include "Chat/ChatWorkingRow.h"

namespace Bralto {

bool ChatWorkingRow::awaitsFirstWords(const std::vector<ChatMessage>& messages)
{
    return messages.empty() || messages.back().role == ChatRole::User ||
           messages.back().blocks.isEmpty();
}

std::optional<ChatWorkingRow> ChatWorkingRow::of(const ChatState& state,
                                                 const std::vector<ChatMessage>& messages,
                                                 bool isLoadingHistory)
{
    if (messages.empty() && isLoadingHistory)
        return ChatWorkingRow{Kind::Busy, QStringLiteral("Loading the conversation…")};
    switch (state.kind) {
    case ChatState::Kind::Starting:
        if (awaitsFirstWords(messages))
            return ChatWorkingRow{Kind::Busy, QStringLiteral("Starting Claude…")};
        break;
    case ChatState::Kind::Working:
        if (awaitsFirstWords(messages))
            return ChatWorkingRow{Kind::Busy, QStringLiteral("Thinking…")};
        break;
    case ChatState::Kind::Failed:
        return ChatWorkingRow{Kind::Failed, state.message};
    case ChatState::Kind::Idle:
    case ChatState::Kind::Waiting:
        break;
    }
    return std::nullopt;
}

} // namespace Bralto
