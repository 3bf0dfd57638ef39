#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace KovaltTool {

enum class DumpForm { None, Text, Sgr, Json };

/// What the command line asks for.
struct Options {
    int cols = 80;
    int rows = 25;
    int scrollback = 500;
    std::string term = "xterm-256color";
    std::optional<std::string> recordFile;
    std::optional<std::string> replayFile;
    DumpForm dump = DumpForm::Text;
    bool withHistory = false;
    std::optional<std::chrono::milliseconds> after;
    std::optional<std::chrono::milliseconds> timeout;
    std::string send;
    std::vector<std::string> command;
};

/// A text for the user and the status to end with.
struct Ending {
    std::string text;
    int status = 0;
};

[[nodiscard]] std::variant<Options, Ending> parseOptions(const std::vector<std::string>& arguments);

} // namespace KovaltTool
