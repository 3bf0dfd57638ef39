#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Kovalt::Base64 {

[[nodiscard]] std::string encode(std::span<const std::uint8_t> data);

/// None if a character is not of the alphabet or the padding is not as it should be.
[[nodiscard]] std::optional<std::vector<std::uint8_t>> decode(std::string_view text);

} // namespace Kovalt::Base64
