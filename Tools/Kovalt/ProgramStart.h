#pragma once

#include "Kovalt/Process/LocalProcess.h"

#include <string>
#include <variant>
#include <vector>

namespace KovaltTool {

/// Why a program can't be started, and the status that a shell would end with.
struct StartFailure {
    std::string text;
    int status = 0;
};

/// What runs `command` as a shell would, in this process's environment and on a terminal called
/// `term`.
[[nodiscard]] std::variant<Kovalt::ProcessStart, StartFailure>
programStart(const std::vector<std::string>& command, const std::string& term);

} // namespace KovaltTool
