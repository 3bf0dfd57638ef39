#pragma once

#include <charconv>
#include <optional>
#include <string_view>
#include <system_error>

/// The number that the whole text spells, in decimal.
[[nodiscard]] inline std::optional<int> wholeNumber(std::string_view text)
{
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return value;
}
