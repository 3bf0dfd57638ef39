#pragma once

#include "Kovalt/Search/SearchService.h"
#include "Tests/Support/KovaltScreen.h"

#include <string>
#include <vector>

namespace Kovalt::Testing {

/// Rows of a step that searches all.
constexpr int Everything = 1 << 30;

inline SearchQuery literal(const std::string& text)
{
    return {text, false, false, false};
}
inline SearchQuery regex(const std::string& text)
{
    return {text, true, false, false};
}
inline TextRange inRow(std::int64_t row, int begin, int end)
{
    return {{row, begin}, {row, end}};
}

inline std::vector<TextRange> all(const SearchService& search)
{
    std::vector<TextRange> matches;
    for (std::size_t i = 0; i < search.count(); ++i)
        matches.push_back(search.match(i));
    return matches;
}

using Matches = std::vector<TextRange>;

} // namespace Kovalt::Testing
