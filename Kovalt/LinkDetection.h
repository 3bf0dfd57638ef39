#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace Kovalt {

/// Finds what looks like a link in plain text: addresses with a known scheme, and paths.
namespace LinkDetection {

/// Longer texts are not searched: the caller hands over the part that matters.
inline constexpr std::size_t LongestText = 4 << 10;

/// Bytes `begin` up to but without `end` of the text.
struct Match {
    std::size_t begin = 0;
    std::size_t end = 0;

    bool operator==(const Match&) const = default;
};

/// All links of one logical line in UTF-8, from left to right, none inside another. The work is
/// bounded: a text that was made to be slow gives the links that were found until then.
/// Any thread may call.
[[nodiscard]] std::vector<Match> findAll(std::string_view text);

/// The link that holds the byte, looked for in the same way.
[[nodiscard]] std::optional<Match> findAt(std::string_view text, std::size_t byte);

} // namespace LinkDetection

} // namespace Kovalt
