#pragma once

/// @file
/// What the status strip says, as values and texts.

#include "Chat/ChatTranscript.h"
#include "Chat/ClaudeChat.h"

namespace Bralto {

/// The facts of the strip at one moment.
struct ChatStatusInfo {
    QString folder;
    std::optional<QString> version, modelName, permissionMode, effort;
    std::optional<qint64> contextUsed, contextWindow; ///< Tokens.
    std::vector<QString> runningAgents;               ///< Their descriptions.
    std::optional<double> cost;                       ///< US dollars.
    ChatState state;

    [[nodiscard]] static ChatStatusInfo of(const ClaudeChat& chat);

    /// How full the context window is, 0 to 1; absent until both numbers are known.
    [[nodiscard]] std::optional<double> contextFraction() const;

    bool operator==(const ChatStatusInfo&) const = default;
};

namespace ChatStatusTexts {

/// "999", "999k", "2M", "1.5M".
[[nodiscard]] QString tokens(qint64 count);

/// A model's identifier as a label: "claude-opus-4-5-20251101[1m]" is "Opus 4.5".
[[nodiscard]] QString displayName(const QString& model);

/// The name of a permission mode; one that isn't known is shown as it came.
[[nodiscard]] QString modeName(const QString& mode);
/// The icon that goes with it.
[[nodiscard]] QString modeSymbol(const QString& mode);

[[nodiscard]] QString stateLabel(const ChatState& state);

/// "Claude Code 2.1.4", then what else is known: the model, the folder's name.
[[nodiscard]] QStringList banner(const ChatStatusInfo& info);

/// The context ring's help: "Context window: 76k of 200k tokens".
[[nodiscard]] QString contextHelp(qint64 used, qint64 window);

/// "1 agent running", "2 agents running".
[[nodiscard]] QString agentsRunning(qsizetype count);

/// "$0.42".
[[nodiscard]] QString cost(double dollars);

} // namespace ChatStatusTexts

} // namespace Bralto
