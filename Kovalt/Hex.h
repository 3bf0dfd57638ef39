#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Kovalt::Hex {

/// Two upper-case digits a byte.
[[nodiscard]] std::string encode(std::string_view bytes);

/// None if it is not pairs of hexadecimal digits.
[[nodiscard]] std::optional<std::string> decode(std::string_view digits);

} // namespace Kovalt::Hex
