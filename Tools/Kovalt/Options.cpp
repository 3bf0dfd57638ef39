#include "Options.h"

#include "WholeNumber.h"

#include <functional>
#include <map>

namespace KovaltTool {
namespace {

constexpr const char* Usage =
    R"(kovalt [OPTIONS] -- COMMAND...      runs a program on a terminal without a window
kovalt [OPTIONS] --replay FILE      feeds what was recorded, without a program

  --cols N          columns (80)
  --rows N          rows (25)
  --scrollback N    rows of history (500)
  --term NAME       the terminal that the program is told of (xterm-256color)
  --record FILE     keep all that the program writes
  --dump FORM       how to write the screen at the end: text, sgr, json or none (text); SIGUSR1
                    writes it at once
  --history         the history too
  --after MS        end after so many milliseconds, whatever the program does
  --send KEYS       type this first: text, and keys such as <Enter> <C-c> <A-x> <S-Tab> <F5> <Up>,
                    <lt> for "<", <Wait 500> for half a second, <Until text> for what must be on the
                    screen before it goes on
  --timeout MS      as --after, but the exit status is 124
  --help, --version

An option's value may also follow a "=". Standard input goes to the program as it comes, its end
does not. The exit status is the program's, 128 and more for a signal that ended it; 127 if there is
no such program, 126 if it can't be run, 2 for options that mean nothing, 1 for a file that can't be
read or written.
)";

constexpr int LargestSide = 10'000;
constexpr int LargestHistory = 10'000'000;
constexpr int LargestTime = 86'400'000;

std::optional<int> number(const std::string& text, int smallest, int largest)
{
    const auto value = wholeNumber(text);
    return value && *value >= smallest && *value <= largest ? value : std::nullopt;
}

std::optional<DumpForm> dumpForm(const std::string& text)
{
    if (text == "none")
        return DumpForm::None;
    if (text == "text")
        return DumpForm::Text;
    if (text == "sgr")
        return DumpForm::Sgr;
    if (text == "json")
        return DumpForm::Json;
    return std::nullopt;
}

Ending mistake(const std::string& text)
{
    return {"kovalt: " + text + "\n\n" + Usage, 2};
}

std::optional<std::string> contradiction(const Options& options)
{
    const bool hasCommand = !options.command.empty() && !options.command.front().empty();
    if (!options.replayFile)
        return hasCommand ? std::nullopt : std::optional<std::string>("no command");
    if (!options.command.empty())
        return "a replay has no command";
    if (options.recordFile || options.after || options.timeout || !options.send.empty())
        return "a replay takes no --record, --send, --after and --timeout";
    return std::nullopt;
}

/// Takes the value of an option; false if it is none.
using Setter = std::function<bool(Options&, const std::string&)>;

Setter intoNumber(int Options::*member, int smallest, int largest)
{
    return [=](Options& options, const std::string& text) {
        const auto value = number(text, smallest, largest);
        options.*member = value.value_or(0);
        return value.has_value();
    };
}

Setter intoTime(std::optional<std::chrono::milliseconds> Options::*member)
{
    return [=](Options& options, const std::string& text) {
        const auto value = number(text, 0, LargestTime);
        options.*member = std::chrono::milliseconds(value.value_or(0));
        return value.has_value();
    };
}

template <typename Member>
Setter intoText(Member Options::*member)
{
    return [=](Options& options, const std::string& text) {
        options.*member = text;
        return !text.empty();
    };
}

const std::map<std::string, Setter, std::less<>>& setters()
{
    static const std::map<std::string, Setter, std::less<>> all{
        {"--cols", intoNumber(&Options::cols, 2, LargestSide)},
        {"--rows", intoNumber(&Options::rows, 1, LargestSide)},
        {"--scrollback", intoNumber(&Options::scrollback, 0, LargestHistory)},
        {"--term", intoText(&Options::term)},
        {"--record", intoText(&Options::recordFile)},
        {"--replay", intoText(&Options::replayFile)},
        {"--dump",
         [](Options& options, const std::string& text) {
             const auto form = dumpForm(text);
             options.dump = form.value_or(options.dump);
             return form.has_value();
         }},
        {"--after", intoTime(&Options::after)},
        {"--timeout", intoTime(&Options::timeout)},
        {"--send", intoText(&Options::send)},
    };
    return all;
}

} // namespace

std::variant<Options, Ending> parseOptions(const std::vector<std::string>& arguments)
{
    Options options;
    std::size_t next = 0;
    for (; next < arguments.size() && arguments[next] != "--"; ++next) {
        const std::size_t equals = arguments[next].find('=');
        const std::string name = arguments[next].substr(0, equals);
        if (arguments[next] == "--help")
            return Ending{Usage, 0};
        if (arguments[next] == "--version")
            return Ending{"kovalt " KOVALT_TOOL_VERSION "\n", 0};
        if (arguments[next] == "--history") {
            options.withHistory = true;
            continue;
        }
        const auto setter = setters().find(name);
        if (setter == setters().end())
            return mistake("what is \"" + arguments[next] + "\"?");
        if (equals == std::string::npos && next + 1 == arguments.size())
            return mistake(name + " needs a value");
        const std::string value =
            equals == std::string::npos ? arguments[++next] : arguments[next].substr(equals + 1);
        if (!setter->second(options, value))
            return mistake(std::string(name).append(" can't be \"").append(value).append("\""));
    }
    if (next < arguments.size())
        options.command.assign(arguments.begin() + std::ptrdiff_t(next) + 1, arguments.end());
    if (const auto text = contradiction(options))
        return mistake(*text);
    return options;
}

} // namespace KovaltTool
