#include "Kovalt/Search/SearchService.h"

#include "Kovalt/LogicalLine.h"

#include <algorithm>
#include <string_view>

namespace Kovalt {

SearchService::SearchService(const Buffer& buffer, const GraphemeTable& graphemes)
    : m_buffer(&buffer)
    , m_graphemes(graphemes)
{
    setBuffer(buffer);
}

void SearchService::setBuffer(const Buffer& buffer)
{
    if (m_text && m_buffer == &buffer)
        return;
    m_buffer = &buffer;
    m_text.emplace(buffer, m_graphemes);
    m_current.reset();
    m_currentFromEnd.reset();
    m_origin = {buffer.linesTop, 0};
    restart();
}

std::optional<SearchError> SearchService::setQuery(const SearchQuery& query)
{
    if (m_pattern && m_query == query)
        return std::nullopt;
    clear();
    m_query = query;
    if (query.text.empty())
        return std::nullopt;
    SearchError error;
    m_pattern = SearchPattern::compile(query, error);
    return m_pattern ? std::nullopt : std::optional(error);
}

void SearchService::clear()
{
    // The next query begins where this one had come to.
    if (m_current)
        m_origin = m_current->begin;
    m_query = {};
    m_pattern.reset();
    m_current.reset();
    m_currentFromEnd.reset();
    restart();
}

std::optional<TextRange> SearchService::current() const
{
    return currentIndex() ? m_current : std::nullopt;
}

std::optional<std::size_t> SearchService::currentIndex() const
{
    if (!m_current)
        return std::nullopt;
    const auto found = std::lower_bound(
        m_matches.begin(), m_matches.end(), *m_current,
        [](const TextRange& match, const TextRange& wanted) { return match.begin < wanted.begin; });
    if (found == m_matches.end() || *found != *m_current)
        return std::nullopt;
    return std::size_t(found - m_matches.begin());
}

std::size_t SearchService::firstBehind(TextPosition place) const
{
    const auto found = std::upper_bound(
        m_matches.begin(), m_matches.end(), place,
        [](TextPosition wanted, const TextRange& match) { return wanted < match.begin; });
    return std::size_t(found - m_matches.begin());
}

std::optional<TextRange> SearchService::choose(std::size_t index)
{
    m_currentFromEnd.reset();
    m_current = m_matches[index];
    m_origin = m_current->begin;
    return m_current;
}

std::optional<TextRange> SearchService::next()
{
    if (m_matches.empty())
        return std::nullopt;
    std::size_t index = firstBehind(m_origin);
    // A match that begins at the origin is the next one, unless it is the current one.
    if (!currentIndex() && index > 0 && m_matches[index - 1].begin == m_origin)
        --index;
    return choose(index < m_matches.size() ? index : 0);
}

std::optional<TextRange> SearchService::previous()
{
    if (m_matches.empty())
        return std::nullopt;
    std::size_t index = firstBehind(m_origin);
    if (index > 0 && m_matches[index - 1].begin == m_origin)
        --index;
    return choose((index > 0 ? index : m_matches.size()) - 1);
}

void SearchService::setOrigin(TextPosition origin)
{
    m_current.reset();
    m_currentFromEnd.reset();
    m_origin = origin;
}

std::vector<SearchHighlight> SearchService::highlights(int firstRow, int lastRow) const
{
    std::vector<SearchHighlight> found;
    const std::int64_t top = m_buffer->linesTop;
    auto match =
        std::partition_point(m_matches.begin(), m_matches.end(), [&](const TextRange& range) {
            return range.end.row < firstRow + top;
        });
    for (; match != m_matches.end() && match->begin.row <= lastRow + top; ++match) {
        const std::int64_t last = std::min<std::int64_t>(match->end.row, lastRow + top);
        for (auto row = std::max<std::int64_t>(match->begin.row, firstRow + top); row <= last;
             ++row) {
            const int ringRow = int(row - top);
            const ColumnRange columns{
                row == match->begin.row ? match->begin.col : 0,
                row == match->end.row ? match->end.col : LogicalLine::length(*m_buffer, ringRow)};
            if (!columns.isEmpty())
                found.push_back({ringRow, columns, m_current == *match});
        }
    }
    return found;
}

} // namespace Kovalt
