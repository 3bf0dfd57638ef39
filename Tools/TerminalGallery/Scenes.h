#pragma once

#include <string>
#include <vector>

namespace Bralto {

/// What a program writes onto a screen of 80 by 25 cells, for looking at.
struct TerminalScene {
    const char* name;
    std::string output;
};

[[nodiscard]] std::vector<TerminalScene> terminalScenes();

/// What a shell and a build leave on the screen.
[[nodiscard]] std::string shellSession();

} // namespace Bralto
