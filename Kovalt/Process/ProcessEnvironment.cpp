#include "Kovalt/Process/ProcessEnvironment.h"

#include <cstdlib>

namespace Kovalt {

std::vector<std::string> getEnvironmentVariables(const std::optional<std::string>& termName,
                                                 TrueColor trueColor)
{
    std::vector<std::string> lines = {"TERM=" + termName.value_or("xterm-256color")};
    if (trueColor == TrueColor::Yes)
        lines.emplace_back("COLORTERM=truecolor");
    lines.emplace_back("LANG=en_US.UTF-8");
    for (const auto* name : {"LOGNAME", "USER", "DISPLAY", "LC_TYPE", "USER", "HOME"}) {
        if (const auto* value = std::getenv(name))
            lines.push_back(std::string(name) + "=" + value);
    }
    return lines;
}

} // namespace Kovalt
