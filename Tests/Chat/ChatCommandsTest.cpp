#include "Chat/ChatCommands.h"

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

QString q(const char* text)
{
    return QString::fromUtf8(text);
}

/// The catalogue for a JSON list of reported commands.
QList<ChatCommand> catalog(const std::string& reported, const QStringList& terminalNames = {})
{
    JsonReader reader;
    const auto object = reader.object("{\"commands\":" + reported + "}");
    EXPECT_TRUE(object) << reported;
    return ChatCommands::catalog(object->objects("commands"), terminalNames);
}

const ChatCommand* find(const QList<ChatCommand>& commands, const char* name)
{
    const auto at = std::ranges::find(commands, q(name), &ChatCommand::name);
    return at == commands.end() ? nullptr : &*at;
}

QStringList names(const QList<ChatCommand>& commands)
{
    QStringList result;
    for (const ChatCommand& command : commands)
        result.append(command.name);
    return result;
}

const QStringList Natives{"model",  "effort", "permissions", "usage", "context", "clear",
                          "resume", "rc",     "mcp",         "cost",  "status",  "help"};
const QStringList TerminalOnly{
    "config", "doctor", "login",          "logout",        "hooks",   "memory",         "plugin",
    "rewind", "export", "add-dir",        "statusline",    "theme",   "terminal-setup", "ide",
    "color",  "focus",  "reload-plugins", "release-notes", "feedback"};

} // namespace

TEST(ChatCommands, BeforeTheAgentAnswersItsOwnAndTheTerminalsAreOffered)
{
    EXPECT_EQ(names(ChatCommands::fallback()), Natives + TerminalOnly);
}

TEST(ChatCommands, NativeCommandsActByThemselves)
{
    const auto& commands = ChatCommands::fallback();

    for (qsizetype at = 0; at < Natives.size(); ++at) {
        SCOPED_TRACE(qPrintable(Natives[at]));
        EXPECT_TRUE(std::holds_alternative<ChatNativeCommand>(commands[at].action));
        EXPECT_TRUE(commands[at].isBuiltin);
        EXPECT_FALSE(commands[at].description.isEmpty());
    }
    EXPECT_EQ(find(commands, "permissions")->aliases, (QStringList{"mode"}));
    EXPECT_EQ(find(commands, "clear")->aliases, (QStringList{"reset", "new"}));
    EXPECT_EQ(find(commands, "resume")->aliases, (QStringList{"continue"}));
    EXPECT_EQ(find(commands, "rc")->aliases, (QStringList{"remote-control"}));
    EXPECT_EQ(find(commands, "effort")->argumentHint, q("[low|medium|high|xhigh|max]"));
    EXPECT_EQ(find(commands, "usage")->description, q("Plan limits, and what's using them"));
}

TEST(ChatCommands, TheCatalogueHasBuiltinsBeforeOthersBeforeTerminalOnes)
{
    const auto commands = catalog(R"([{"name":"mine"},{"name":"review","builtin":true},)"
                                  R"({"name":"memory","builtin":true},{"name":"yours"}])");

    QStringList terminals = TerminalOnly;
    terminals.removeAll("memory");
    EXPECT_EQ(names(commands),
              (Natives + QStringList{"review", "mine", "yours", "memory"} + terminals));
    EXPECT_TRUE(std::holds_alternative<ChatCommand::Prompt>(find(commands, "review")->action));
    EXPECT_TRUE(std::holds_alternative<ChatCommand::Prompt>(find(commands, "mine")->action));
    EXPECT_FALSE(find(commands, "mine")->isBuiltin);
}

TEST(ChatCommands, HiddenCommandsNeverShow)
{
    const auto commands =
        catalog(R"([{"name":"exit"},{"name":"quit"},{"name":"heapdump"},{"name":"extra-usage"},)"
                R"({"name":"__remote-workflow"},{"name":"workflow-launch-exec"},{"name":""},{}])");

    EXPECT_EQ(commands, ChatCommands::fallback());
}

TEST(ChatCommands, AReportedCommandDoesNotReplaceANativeOne)
{
    const auto commands = catalog(R"([{"name":"model","description":"Other"},{"name":"new"}])");

    EXPECT_EQ(commands, ChatCommands::fallback());
}

TEST(ChatCommands, ADoubledNameFallsOut)
{
    const auto commands =
        catalog(R"([{"name":"a","description":"first"},{"name":"a","description":"second"}])");

    EXPECT_EQ(commands.size(), ChatCommands::fallback().size() + 1);
    EXPECT_EQ(find(commands, "a")->description, q("first"));
}

TEST(ChatCommands, AReportedTerminalCommandKeepsItsOwnDescription)
{
    const auto reported = catalog(R"([{"name":"memory","description":"Reported"}])");

    EXPECT_EQ(find(reported, "memory")->description, q("Reported"));
    EXPECT_TRUE(std::holds_alternative<ChatCommand::Terminal>(find(reported, "memory")->action));
    EXPECT_FALSE(find(reported, "memory")->isBuiltin);
    const ChatCommand* const unreported = find(ChatCommands::fallback(), "memory");
    EXPECT_EQ(unreported->description, q("Edit Claude's memory files"));
    EXPECT_TRUE(std::holds_alternative<ChatCommand::Terminal>(unreported->action));
    EXPECT_TRUE(unreported->isBuiltin);
}

TEST(ChatCommands, FurtherNamesMayNeedTheTerminal)
{
    const auto commands = catalog(R"([{"name":"vim"},{"name":"mine"}])", {"vim", "absent"});

    EXPECT_TRUE(std::holds_alternative<ChatCommand::Terminal>(find(commands, "vim")->action));
    EXPECT_FALSE(find(commands, "absent"));
    EXPECT_EQ(commands.indexOf(*find(commands, "mine")) + 1,
              commands.indexOf(*find(commands, "vim")));
}

TEST(ChatCommands, AReportedCommandTellsItsParts)
{
    const auto commands = catalog(
        R"([{"name":"pack:do","description":" Does things (project) ","argumentHint":" [x] ",)"
        R"("aliases":["d","mode","pack:do",7]},{"name":"q","description":"(plug) Does &lt;b&gt;"}])");

    const ChatCommand* const first = find(commands, "pack:do");
    EXPECT_EQ(first->description, q("Does things"));
    EXPECT_EQ(first->argumentHint, q("[x]"));
    EXPECT_EQ(first->aliases, (QStringList{"d"}));
    EXPECT_EQ(first->plugin, q("pack"));
    EXPECT_EQ(find(commands, "q")->plugin, q("plug"));
    EXPECT_EQ(find(commands, "q")->description, q("Does <b>"));
}

TEST(ChatCommands, ADescriptionIsCleaned)
{
    struct Row {
        const char* raw;
        const char* description;
        std::optional<QString> plugin;
    };
    const Row rows[] = {
        {"(my-plugin) Does things (user)", "Does things", q("my-plugin")},
        {"  Plain \n", "Plain", std::nullopt},
        {"Twice (user) (project)", "Twice (user)", std::nullopt},
        {"Bundled (bundled)", "Bundled", std::nullopt},
        {"Not at the end (user).", "Not at the end (user).", std::nullopt},
        {"Glued(user)", "Glued(user)", std::nullopt},
        {"(open and no more", "(open and no more", std::nullopt},
        {"(only)", "", q("only")},
        {"() x", "x", std::nullopt},
        {"a &lt;b&gt; &amp; &amp;lt;", "a <b> & &lt;", std::nullopt},
        {"", "", std::nullopt},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.raw);
        const auto cleaned = ChatCommands::clean(q(row.raw));
        EXPECT_EQ(cleaned.description, q(row.description));
        EXPECT_EQ(cleaned.plugin, row.plugin);
    }
}

TEST(ChatCommands, ArgumentsAreNeededUnlessTheHintCallsThemOptional)
{
    ChatCommand command;

    EXPECT_FALSE(command.needsArguments());
    command.argumentHint = q("[file]");
    EXPECT_TRUE(command.needsArguments());
    command.argumentHint = q("[Optional file]");
    EXPECT_FALSE(command.needsArguments());
}

TEST(ChatCommands, AnEmptyQueryGivesTheFirstCommands)
{
    const auto& commands = ChatCommands::fallback();

    EXPECT_EQ(names(ChatCommands::matches(QString(), commands, 3)),
              (QStringList{"model", "effort", "permissions"}));
    EXPECT_EQ(ChatCommands::matches(QString(), commands, 1000), commands);
    EXPECT_TRUE(ChatCommands::matches(QString(), commands, 0).isEmpty());
    EXPECT_TRUE(ChatCommands::matches(q("model"), commands, -1).isEmpty());
}

TEST(ChatCommands, BetterMatchesComeFirst)
{
    const auto command = [](const char* name, const QStringList& aliases = {},
                            const char* description = "") {
        ChatCommand result;
        result.name = q(name);
        result.aliases = aliases;
        result.description = q(description);
        return result;
    };
    const QList<ChatCommand> commands{
        command("nothing"),
        command("described", {}, "Where the cat sleeps"),
        command("concatenate"),
        command("my-category"),
        command("other", {"cats"}),
        command("catalog"),
        command("aliased", {"CAT"}),
        command("a:cat"),
        command("Cat"),
    };

    EXPECT_EQ(names(ChatCommands::matches(q("cAt"), commands, 100)),
              (QStringList{"aliased", "Cat", "catalog", "other", "my-category", "a:cat",
                           "concatenate", "described"}));
    EXPECT_EQ(names(ChatCommands::matches(q("cat"), commands, 3)),
              (QStringList{"aliased", "Cat", "catalog"}));
}

TEST(ChatCommands, ADescriptionCountsFromThreeCharactersOn)
{
    ChatCommand command;
    command.name = q("x");
    command.description = q("Some words");

    EXPECT_TRUE(ChatCommands::matches(q("wo"), {command}, 5).isEmpty());
    EXPECT_EQ(ChatCommands::matches(q("wor"), {command}, 5).size(), 1);
}

TEST(ChatCommands, AQueryStandsBetweenTheSlashAndTheCursor)
{
    struct Row {
        const char* text; ///< The cursor is where the bar stands.
        std::optional<QString> query;
    };
    const Row rows[] = {
        {"/|", q("")},           {"/mo|", q("mo")},         {"/mo| rest", q("mo")},
        {"/mo|\nrest", q("mo")}, {"/mo|del", std::nullopt}, {"|/mo", std::nullopt},
        {"/mo |", std::nullopt}, {"/mo x|", std::nullopt},  {"mo|", std::nullopt},
        {" /mo|", std::nullopt}, {"|", std::nullopt},       {"/a/b|", q("a/b")},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        QString text = q(row.text);
        const qsizetype cursor = text.indexOf(u'|');
        text.remove(cursor, 1);
        EXPECT_EQ(ChatCommands::paletteQuery(text, cursor), row.query);
    }
}

TEST(ChatCommands, ACursorOutsideTheTextGivesNoQuery)
{
    EXPECT_EQ(ChatCommands::paletteQuery(q("/mo"), 4), std::nullopt);
    EXPECT_EQ(ChatCommands::paletteQuery(q("/mo"), -1), std::nullopt);
}

TEST(ChatCommands, ALineRoutesToItsCommandWhateverItsCase)
{
    struct Row {
        const char* text;
        const char* command; ///< Null if the line is ordinary text.
        const char* arguments;
    };
    const Row rows[] = {
        {"/MODEL", "model", ""},
        {"/model opus ", "model", "opus"},
        {"/New", "clear", ""},
        {"/remote-control\non", "rc", "on"},
        {"/memory  a  b", "memory", "a  b"},
        {"/foo bar", nullptr, ""},
        {"/", nullptr, ""},
        {"/ model", nullptr, ""},
        {" /model", nullptr, ""},
        {"model", nullptr, ""},
        {"", nullptr, ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        const auto route = ChatCommands::route(q(row.text), ChatCommands::fallback());
        ASSERT_EQ(route.has_value(), row.command != nullptr);
        if (route) {
            EXPECT_EQ(route->command.name, q(row.command));
            EXPECT_EQ(route->arguments, q(row.arguments));
        }
    }
}

TEST(ChatCommands, ModesAndLevelsHaveNames)
{
    QStringList modes;
    for (const PermissionMode& mode : ChatCommands::permissionModes())
        modes.append(mode.mode + u'=' + mode.name + u'/' + mode.symbol);
    EXPECT_EQ(modes, (QStringList{"default=Ask/hand.raised", "acceptEdits=Accept Edits/pencil",
                                  "plan=Plan/map", "bypassPermissions=Bypass/bolt"}));

    QStringList levels;
    for (const QString& level : ChatCommands::defaultEffortLevels())
        levels.append(ChatCommands::effortName(level) + ": " + ChatCommands::effortDetail(level));
    EXPECT_EQ(levels, (QStringList{"Low: Quick and light", "Medium: Balanced", "High: Thorough",
                                   "Extra High: Extra thorough, for hard problems",
                                   "Max: Everything it has"}));
    EXPECT_EQ(ChatCommands::effortName(q("turbo")), q("Turbo"));
    EXPECT_EQ(ChatCommands::effortDetail(q("turbo")), q("Everything it has"));
}
