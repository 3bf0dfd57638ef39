#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Kovalt::Utf8 {

inline constexpr char32_t Replacement = 0xFFFD;

/// Appends the scalar; what is not one is appended as U+FFFD.
void append(std::string& text, char32_t scalar);
[[nodiscard]] std::string encode(char32_t scalar);

/// The scalar at `position`, which moves behind it. Malformed bytes read as U+FFFD, one byte each.
/// `position` must be inside the text.
[[nodiscard]] char32_t next(std::string_view text, std::size_t& position);
/// Whether nothing in the text is malformed.
[[nodiscard]] bool isValid(std::string_view text);
/// The text without anything that a program, to which it is sent as if it had been typed, could
/// take for a key or the beginning of a sequence.
[[nodiscard]] std::string withoutControls(std::string_view text);
/// The whole text as scalars.
[[nodiscard]] std::u32string decode(std::string_view text);

} // namespace Kovalt::Utf8
