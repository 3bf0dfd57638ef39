#pragma once

/// @file
/// How a tool call reads: the sentence of its row, the quiet detail at its right, and the texts
/// behind it.

#include "Chat/ChatTranscript.h"

namespace Bralto {

/// The sentence of a tool's row.
struct ToolPresentation {
    QString symbol; ///< The name of an icon.
    QString verb;
    QString object;      ///< May be empty.
    bool isCode = false; ///< The object is set in the fixed-width face.

    [[nodiscard]] static ToolPresentation of(const ChatToolCall& call);

    bool operator==(const ToolPresentation&) const = default;
};

namespace ToolDetails {

/// What can be counted of a call, for example "142 lines" of a file that was read or "7 tools" of
/// an agent; empty if there is nothing to count. Edits have numbers of their own.
[[nodiscard]] QString count(const ChatToolCall& call, const ChatSubagent* subagent);

/// Whether the row has anything to open: a difference, an outcome, or an agent's own calls.
[[nodiscard]] bool canOpen(const ChatToolCall& call, const ChatSubagent* subagent);

/// The input as the open card shows it: the command of a shell, else the whole input as JSON.
/// Empty if there is none.
[[nodiscard]] QString input(const ChatToolCall& call);

/// The calls that an agent has made, oldest first. They point into `subagent`.
[[nodiscard]] std::vector<const ChatToolCall*> calls(const ChatSubagent& subagent);

/// "Running", "Done" or "Failed".
[[nodiscard]] QString statusName(ChatToolStatus status);

} // namespace ToolDetails

} // namespace Bralto
