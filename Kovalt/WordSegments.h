#pragma once

#include <cstddef>
#include <string_view>

namespace Kovalt::WordSegments {

/// Whether a word boundary lies before the scalar at `index`, by the default rules of the Unicode
/// standard. True at 0 and at the end.
[[nodiscard]] bool isBoundary(std::u32string_view text, std::size_t index);

} // namespace Kovalt::WordSegments
