#pragma once

#include "Kovalt/Keyboard/KittyKeyEvent.h"

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace KovaltTool {

/// One thing to do: text to type as it is, a key to press, a time to wait.
using KeyStep = std::variant<std::string, Kovalt::KittyKeyEvent, std::chrono::milliseconds>;

/// Reads what `--send` takes: text, and keys in angle brackets ("<Enter>", "<C-A-x>", "<Wait 500>",
/// "<lt>"). None if a name in brackets means nothing.
[[nodiscard]] std::optional<std::vector<KeyStep>> readKeys(std::string_view text);

} // namespace KovaltTool
