#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <string_view>

namespace Kovalt::Ascii {

/// The same bytes as characters.
[[nodiscard]] inline std::string_view view(std::span<const std::uint8_t> bytes)
{
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

[[nodiscard]] inline std::span<const std::uint8_t> bytes(std::string_view text)
{
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

/// Whether every byte is below 0x80.
[[nodiscard]] inline bool isAscii(std::string_view text)
{
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

/// Takes what stands before the separator off the text, and the separator with it.
[[nodiscard]] inline std::string_view takeField(std::string_view& text, char separator)
{
    const auto end = std::min(text.find(separator), text.size());
    const auto field = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return field;
}

} // namespace Kovalt::Ascii
