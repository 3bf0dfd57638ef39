#include "DemoAgent/Arguments.h"

#include <functional>
#include <map>

namespace DemoAgent {

namespace {

using Setter = std::function<void(Arguments&, const QString&)>;

const std::map<QString, Setter>& switches()
{
    static const std::map<QString, Setter> table{
        {"-p", [](Arguments& all, const QString&) { all.isHeadless = true; }},
        {"--print", [](Arguments& all, const QString&) { all.isHeadless = true; }},
        {"--version", [](Arguments& all, const QString&) { all.wantsVersion = true; }},
        {"-v", [](Arguments& all, const QString&) { all.wantsVersion = true; }},
        {"--help", [](Arguments& all, const QString&) { all.wantsHelp = true; }},
        {"-h", [](Arguments& all, const QString&) { all.wantsHelp = true; }},
        {"--include-partial-messages",
         [](Arguments& all, const QString&) { all.includesPartialMessages = true; }},
        {"--dangerously-skip-permissions",
         [](Arguments& all, const QString&) { all.maySkipPermissions = true; }},
    };
    return table;
}

// Flags with a value. Those that change nothing here stand in the table so that their value isn't
// taken for a flag.
const std::map<QString, Setter>& options()
{
    const auto ignored = [](Arguments&, const QString&) {};
    static const std::map<QString, Setter> table{
        {"--resume", [](Arguments& all, const QString& value) { all.resume = value; }},
        {"-r", [](Arguments& all, const QString& value) { all.resume = value; }},
        {"--session-id", [](Arguments& all, const QString& value) { all.sessionId = value; }},
        {"--permission-mode",
         [](Arguments& all, const QString& value) { all.permissionMode = value; }},
        {"--effort", [](Arguments& all, const QString& value) { all.effort = value; }},
        {"--model", [](Arguments& all, const QString& value) { all.model = value; }},
        {"--mcp-config",
         [](Arguments& all, const QString& value) { all.mcpConfigs.append(value); }},
        {"--script", [](Arguments& all, const QString& value) { all.script = value; }},
        {"--record", [](Arguments& all, const QString& value) { all.record = value; }},
        {"--input-format", ignored},
        {"--output-format", ignored},
        {"--permission-prompt-tool", ignored},
        {"--settings", ignored},
    };
    return table;
}

} // namespace

Arguments Arguments::parse(const QStringList& words)
{
    Arguments result;
    for (qsizetype index = 0; index < words.size(); ++index) {
        const QString& word = words.at(index);
        if (const auto found = switches().find(word); found != switches().end()) {
            found->second(result, {});
            continue;
        }
        const qsizetype equals = word.startsWith(u"--") ? word.indexOf(u'=') : -1;
        const auto found = options().find(equals < 0 ? word : word.left(equals));
        if (found == options().end())
            continue;
        if (equals >= 0)
            found->second(result, word.mid(equals + 1));
        else if (index + 1 < words.size())
            found->second(result, words.at(++index));
    }
    return result;
}

QString helpText()
{
    return QStringLiteral(
        "Usage: bralto-demo-agent -p --input-format stream-json --output-format stream-json "
        "[options]\n"
        "\n"
        "A stand-in for the real agent: it speaks the same stream-json on stdin and stdout, needs\n"
        "no network and no account, and makes up what it says.\n"
        "\n"
        "  -p, --print                       speak over the pipes\n"
        "  --session-id ID                   begin a conversation with this id\n"
        "  --resume ID                       go on with a stored conversation\n"
        "  --permission-mode MODE            default, acceptEdits, plan or bypassPermissions\n"
        "  --dangerously-skip-permissions    begin in, and allow, bypassPermissions\n"
        "  --model MODEL, --effort LEVEL     what the settings begin with\n"
        "  --mcp-config JSON-OR-FILE         servers to list; they are not started\n"
        "  --script FILE                     play a script (DemoAgent/README.md)\n"
        "  --record FILE                     append what arrives on stdin to FILE\n"
        "  --version, --help\n"
        "\n"
        "BRALTO_DEMO_SPEED divides every pause: 20 is twenty times as fast, 0 is without pauses.\n"
        "Flags that are not listed are ignored.\n");
}

} // namespace DemoAgent
