#pragma once

#include "Kovalt/Keyboard/KittyKeyEvent.h"

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace KovaltTool {

/// To wait until this stands on the screen, within one row.
struct AwaitedText {
    std::string text;
};

/// One thing to do: text to type as it is, a key to press, a time or a text to wait for.
using KeyStep =
    std::variant<std::string, Kovalt::KittyKeyEvent, std::chrono::milliseconds, AwaitedText>;

/// Reads what `--send` takes: text, and keys in angle brackets ("<Enter>", "<C-A-x>", "<Wait 500>",
/// "<Until ready>", "<lt>"). None if a name in brackets means nothing.
[[nodiscard]] std::optional<std::vector<KeyStep>> readKeys(std::string_view text);

} // namespace KovaltTool
