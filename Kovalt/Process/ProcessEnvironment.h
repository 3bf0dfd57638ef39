#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Kovalt {

enum class TrueColor : std::uint8_t { No, Yes };

/// The environment of a process whose starter gives none: the terminal's own variables, and a few
/// of this process's. Lines of the form "NAME=value"; USER stands there twice.
[[nodiscard]] std::vector<std::string>
getEnvironmentVariables(const std::optional<std::string>& termName = {},
                        TrueColor trueColor = TrueColor::Yes);

} // namespace Kovalt
