#include "Chat/ChatCommands.h"

#include <QSet>

#include <algorithm>
#include <array>

namespace Bralto {

bool ChatCommand::needsArguments() const
{
    return !argumentHint.isEmpty() && !argumentHint.contains(u"optional", Qt::CaseInsensitive);
}

namespace ChatCommands {

namespace {

ChatCommand native(ChatNativeCommand action, const QString& name, const QString& description,
                   const QString& argumentHint = {}, const QStringList& aliases = {})
{
    return {name, description, argumentHint, aliases, action, true, std::nullopt};
}

const QList<ChatCommand>& nativeCommands()
{
    using enum ChatNativeCommand;
    static const QList<ChatCommand> commands{
        native(Model, "model", "Choose the model for this conversation", "[model]"),
        native(Effort, "effort", "Set how hard Claude thinks", "[low|medium|high|xhigh|max]"),
        native(Permissions, "permissions", "Switch the permission mode", {}, {"mode"}),
        native(Usage, "usage", "Plan limits, and what's using them"),
        native(Context, "context", "What's filling the context window"),
        native(Clear, "clear", "Start a new conversation in this pane", {}, {"reset", "new"}),
        native(Resume, "resume", "Pick up an earlier conversation from this project", {},
               {"continue"}),
        native(RemoteControl, "rc", "Remote Control: carry on from the web client or your phone",
               {}, {"remote-control"}),
        native(Mcp, "mcp", "MCP servers and how they're doing"),
        native(Cost, "cost", "What this conversation has cost"),
        native(Status, "status", "Version, account and session details"),
        native(Help, "help", "What works in the chat"),
    };
    return commands;
}

/// Never offered, even if the agent reports them.
bool isHidden(const QString& name)
{
    static const QSet<QString> names{
        "__remote-workflow", "workflow-launch-exec", "extra-usage", "heapdump", "exit", "quit"};
    return names.contains(name);
}

struct TerminalOnly {
    QString name;
    QString description;
};

const QList<TerminalOnly>& terminalTable()
{
    static const QList<TerminalOnly> table{
        {"config", "Open Claude Code's settings"},
        {"doctor", "Check your Claude Code install"},
        {"login", "Sign in to your Skitiosku account"},
        {"logout", "Sign out"},
        {"hooks", "Manage hooks"},
        {"memory", "Edit Claude's memory files"},
        {"plugin", "Manage plugins"},
        {"rewind", "Go back to an earlier point in the conversation"},
        {"export", "Export the conversation"},
        {"add-dir", "Add a working directory"},
        {"statusline", "Set up the status line"},
        {"theme", "Change the terminal theme"},
        {"terminal-setup", "Set up Shift+Enter for newlines"},
        {"ide", "Connect to an IDE"},
        {"color", "Set the prompt bar colour"},
        {"focus", "Toggle focus view"},
        {"reload-plugins", "Activate pending plugin changes"},
        {"release-notes", "What's new in Claude Code"},
        {"feedback", "Send feedback about Claude Code"},
    };
    return table;
}

bool isWhitespace(QChar character)
{
    return character.isSpace();
}

/// A reported command, its aliases without those that are `known`.
ChatCommand reportedCommand(const JsonObject& object, const QString& name,
                            const QSet<QString>& known)
{
    ChatCommand command;
    command.name = name;
    const auto cleaned = clean(object.string("description").value_or(QString()));
    command.description = cleaned.description;
    command.plugin = cleaned.plugin;
    if (!command.plugin && name.contains(u':'))
        command.plugin = name.section(u':', 0, 0);
    command.argumentHint = object.string("argumentHint").value_or(QString()).trimmed();
    for (const QString& alias : object.strings("aliases")) {
        if (!known.contains(alias))
            command.aliases.append(alias);
    }
    command.isBuiltin = object.boolean("builtin").value_or(false);
    return command;
}

bool hasWordBeginningWith(const QString& name, const QString& query)
{
    for (qsizetype at = name.indexOf(query); at >= 0; at = name.indexOf(query, at + 1)) {
        if (at == 0 || QStringView(u":-_").contains(name[at - 1]))
            return true;
    }
    return false;
}

/// How well a command fits a query in lower case, 0 being best; absent if not at all.
std::optional<int> score(const ChatCommand& command, const QString& query)
{
    constexpr qsizetype ShortestInDescription = 3;
    const QString name = command.name.toLower();
    const auto anyAlias = [&](auto fits) {
        return std::ranges::any_of(command.aliases,
                                   [&](const QString& alias) { return fits(alias.toLower()); });
    };
    if (name == query || anyAlias([&](const QString& alias) { return alias == query; }))
        return 0;
    if (name.startsWith(query))
        return 1;
    if (anyAlias([&](const QString& alias) { return alias.startsWith(query); }))
        return 2;
    if (hasWordBeginningWith(name, query))
        return 3;
    if (name.contains(query))
        return 4;
    if (query.size() >= ShortestInDescription && command.description.toLower().contains(query))
        return 5;
    return std::nullopt;
}

} // namespace

const QList<ChatCommand>& fallback()
{
    static const QList<ChatCommand> commands = catalog({});
    return commands;
}

QList<ChatCommand> catalog(std::span<const JsonObject> reported, const QStringList& terminalNames)
{
    QSet<QString> known;
    for (const ChatCommand& command : nativeCommands()) {
        known.insert(command.name);
        for (const QString& alias : command.aliases)
            known.insert(alias);
    }
    QSet<QString> terminalSet(terminalNames.begin(), terminalNames.end());
    for (const TerminalOnly& entry : terminalTable())
        terminalSet.insert(entry.name);

    QList<ChatCommand> builtins;
    QList<ChatCommand> others;
    QList<ChatCommand> terminals;
    for (const JsonObject& object : reported) {
        const QString name = object.string("name").value_or(QString());
        if (name.isEmpty() || isHidden(name) || known.contains(name))
            continue;
        known.insert(name);
        ChatCommand command = reportedCommand(object, name, known);
        const bool isTerminal = terminalSet.contains(name);
        if (isTerminal)
            command.action = ChatCommand::Terminal{};
        else
            command.action = ChatCommand::Prompt{};
        (isTerminal ? terminals : command.isBuiltin ? builtins : others).append(command);
    }
    for (const TerminalOnly& entry : terminalTable()) {
        if (!known.contains(entry.name)) {
            terminals.append(ChatCommand{entry.name,
                                         entry.description,
                                         {},
                                         {},
                                         ChatCommand::Terminal{},
                                         true,
                                         std::nullopt});
        }
    }
    return nativeCommands() + builtins + others + terminals;
}

CleanDescription clean(const QString& description)
{
    CleanDescription result{description.trimmed(), std::nullopt};
    for (const QLatin1String source :
         {QLatin1String(" (user)"), QLatin1String(" (project)"), QLatin1String(" (bundled)")}) {
        if (result.description.endsWith(source)) {
            result.description.chop(source.size());
            break;
        }
    }
    const qsizetype close = result.description.indexOf(u')');
    if (result.description.startsWith(u'(') && close > 0) {
        const QString plugin = result.description.mid(1, close - 1);
        if (!plugin.isEmpty())
            result.plugin = plugin;
        result.description = result.description.mid(close + 1).trimmed();
    }
    result.description.replace(QLatin1String("&lt;"), QLatin1String("<"));
    result.description.replace(QLatin1String("&gt;"), QLatin1String(">"));
    result.description.replace(QLatin1String("&amp;"), QLatin1String("&"));
    return result;
}

QList<ChatCommand> matches(const QString& query, const QList<ChatCommand>& commands,
                           qsizetype limit)
{
    limit = std::max<qsizetype>(limit, 0);
    if (query.isEmpty())
        return commands.first(std::min(commands.size(), limit));

    struct Match {
        int score;
        const ChatCommand* command;
    };
    const QString lowered = query.toLower();
    std::vector<Match> found;
    for (const ChatCommand& command : commands) {
        if (const auto value = score(command, lowered))
            found.push_back({*value, &command});
    }
    std::ranges::stable_sort(found, {}, &Match::score);
    found.resize(std::min(found.size(), std::size_t(limit)));

    QList<ChatCommand> result;
    for (const Match& match : found)
        result.append(*match.command);
    return result;
}

std::optional<QString> paletteQuery(const QString& text, qsizetype cursor)
{
    if (!text.startsWith(u'/') || cursor < 1 || cursor > text.size())
        return std::nullopt;
    if (cursor < text.size() && !isWhitespace(text[cursor]))
        return std::nullopt;
    const QString query = text.mid(1, cursor - 1);
    if (std::ranges::any_of(query, isWhitespace))
        return std::nullopt;
    return query;
}

std::optional<ChatCommandRoute> route(const QString& text, const QList<ChatCommand>& commands)
{
    if (!text.startsWith(u'/'))
        return std::nullopt;
    const auto end = std::ranges::find_if(text, isWhitespace);
    const QString name = text.mid(1, end - text.begin() - 1).toLower();
    if (name.isEmpty())
        return std::nullopt;
    for (const ChatCommand& command : commands) {
        const bool fits = command.name.toLower() == name ||
                          std::ranges::any_of(command.aliases, [&](const QString& alias) {
                              return alias.toLower() == name;
                          });
        if (fits)
            return ChatCommandRoute{command, text.mid(end - text.begin()).trimmed()};
    }
    return std::nullopt;
}

const QList<PermissionMode>& permissionModes()
{
    static const QList<PermissionMode> modes{
        {"default", "Ask", "Ask before editing files or running commands", "hand.raised"},
        {"acceptEdits", "Accept Edits", "Edit files freely, ask before commands", "pencil"},
        {"plan", "Plan", "Look and plan, change nothing until you approve", "map"},
        {"bypassPermissions", "Bypass", "Run everything without asking", "bolt"},
    };
    return modes;
}

const QStringList& defaultEffortLevels()
{
    static const QStringList levels{"low", "medium", "high", "xhigh", "max"};
    return levels;
}

QString effortName(const QString& level)
{
    if (level == u"xhigh")
        return QStringLiteral("Extra High");
    return level.left(1).toUpper() + level.mid(1);
}

QString effortDetail(const QString& level)
{
    if (level == u"low")
        return QStringLiteral("Quick and light");
    if (level == u"medium")
        return QStringLiteral("Balanced");
    if (level == u"high")
        return QStringLiteral("Thorough");
    if (level == u"xhigh")
        return QStringLiteral("Extra thorough, for hard problems");
    return QStringLiteral("Everything it has");
}

} // namespace ChatCommands

} // namespace Bralto
