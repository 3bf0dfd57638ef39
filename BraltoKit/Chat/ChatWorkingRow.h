#pragma once

#include "Chat/ClaudeChat.h"

namespace Bralto {

/// The row below the last message, while there is something to say that no message says yet.
struct ChatWorkingRow {
    enum class Kind { Busy, Failed };

    Kind kind = Kind::Busy;
    QString text;

    /// Whether the turn has brought nothing to read yet.
    [[nodiscard]] static bool awaitsFirstWords(const std::vector<ChatMessage>& messages);

    [[nodiscard]] static std::optional<ChatWorkingRow>
    of(const ChatState& state, const std::vector<ChatMessage>& messages, bool isLoadingHistory);

    bool operator==(const ChatWorkingRow&) const = default;
};

} // namespace Bralto
