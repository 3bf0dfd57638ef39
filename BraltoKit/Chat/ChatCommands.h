#pragma once

#include "Base/Json.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>
#include <span>
#include <variant>

namespace Bralto {

/// The commands that the pane answers itself.
enum class ChatNativeCommand {
    Model,
    Effort,
    Permissions,
    Usage,
    Context,
    Clear,
    Resume,
    RemoteControl,
    Mcp,
    Cost,
    Status,
    Help
};

/// One slash command.
struct ChatCommand {
    /// A plain prompt that goes to the agent.
    struct Prompt {
        bool operator==(const Prompt&) const = default;
    };
    /// Needs the agent's full-screen form.
    struct Terminal {
        bool operator==(const Terminal&) const = default;
    };
    using Action = std::variant<ChatNativeCommand, Prompt, Terminal>;

    QString name; ///< Without the leading slash.
    QString description;
    QString argumentHint;
    QStringList aliases;
    Action action;
    bool isBuiltin = false;
    std::optional<QString> plugin;

    /// Whether the hint asks for arguments and doesn't call them optional.
    [[nodiscard]] bool needsArguments() const;

    bool operator==(const ChatCommand&) const = default;
};

/// A permission mode of the agent as the lists show it.
struct PermissionMode {
    QString mode;
    QString name;
    QString detail;
    QString symbol;
};

/// A finished line that means a command.
struct ChatCommandRoute {
    ChatCommand command;
    QString arguments;
};

namespace ChatCommands {

/// What is offered before the agent has answered: the native commands and the terminal-only ones.
[[nodiscard]] const QList<ChatCommand>& fallback();

/// The commands that the agent reported, merged with the ones that the program knows: native,
/// built-in, other, terminal-only. Hidden and doubled names fall out.
[[nodiscard]] QList<ChatCommand> catalog(std::span<const JsonObject> reported,
                                         const QStringList& terminalNames = {});

/// `description` without its source in parentheses and its entities; the plugin it names, if any.
struct CleanDescription {
    QString description;
    std::optional<QString> plugin;
};
[[nodiscard]] CleanDescription clean(const QString& description);

/// The commands that fit `query`, best first, at most `limit`.
[[nodiscard]] QList<ChatCommand> matches(const QString& query, const QList<ChatCommand>& commands,
                                         qsizetype limit);

/// What stands between a leading slash and the cursor (a position in UTF-16 units), if the cursor
/// is at the end of that word.
[[nodiscard]] std::optional<QString> paletteQuery(const QString& text, qsizetype cursor);

/// The command that `text` means, absent if it is ordinary text.
[[nodiscard]] std::optional<ChatCommandRoute> route(const QString& text,
                                                    const QList<ChatCommand>& commands);

/// The four modes in list order.
[[nodiscard]] const QList<PermissionMode>& permissionModes();

/// The effort levels of a model that names none, from light to heavy.
[[nodiscard]] const QStringList& defaultEffortLevels();
/// A level as the lists show it: "Extra High" for "xhigh".
[[nodiscard]] QString effortName(const QString& level);
[[nodiscard]] QString effortDetail(const QString& level);

} // namespace ChatCommands

} // namespace Bralto
