#include "ProgramStart.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string_view>

namespace KovaltTool {
namespace {

constexpr int CannotExecute = 126;
constexpr int NotFound = 127;

bool isProgram(const std::string& path)
{
    std::error_code error;
    return access(path.c_str(), X_OK) == 0 && std::filesystem::is_regular_file(path, error);
}

/// Looks in the folders of PATH, of which an empty one is the current one.
std::optional<std::string> find(const std::string& name)
{
    const char* path = std::getenv("PATH");
    std::string_view rest = path ? path : "/usr/bin:/bin";
    while (true) {
        const std::size_t colon = rest.find(':');
        const std::string_view folder = rest.substr(0, colon);
        const std::string candidate = std::string(folder.empty() ? "." : folder) + '/' + name;
        if (isProgram(candidate))
            return candidate;
        if (colon == std::string_view::npos)
            return std::nullopt;
        rest.remove_prefix(colon + 1);
    }
}

/// This process's environment with the terminal's own variables in it.
std::vector<std::string> environmentFor(const std::string& term)
{
    std::vector<std::string> lines;
    for (char** line = environ; *line; ++line) {
        const std::string_view text(*line);
        if (!text.starts_with("TERM=") && !text.starts_with("COLORTERM=") &&
            !text.starts_with("COLUMNS=") && !text.starts_with("LINES="))
            lines.emplace_back(text);
    }
    lines.push_back("TERM=" + term);
    lines.emplace_back("COLORTERM=truecolor");
    return lines;
}

} // namespace

std::variant<Kovalt::ProcessStart, StartFailure>
programStart(const std::vector<std::string>& command, const std::string& term)
{
    const std::string& name = command.front();
    const bool isPath = name.find('/') != std::string::npos;
    const auto program = isPath ? std::optional(name) : find(name);
    if (!program || access(program->c_str(), F_OK) != 0)
        return StartFailure{"there is no " + name, NotFound};
    if (!isProgram(*program))
        return StartFailure{name + " is no program", CannotExecute};
    Kovalt::ProcessStart start;
    start.executable = *program;
    start.arguments.assign(command.begin() + 1, command.end());
    start.execName = name;
    start.environment = environmentFor(term);
    return start;
}

} // namespace KovaltTool
