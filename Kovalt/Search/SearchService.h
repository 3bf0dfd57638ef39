#pragma once

#include "Kovalt/Buffer.h"
#include "Kovalt/Search/SearchPattern.h"
#include "Kovalt/Search/SearchText.h"
#include "Kovalt/TextPosition.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <vector>

namespace Kovalt {

class GraphemeTable;

/// A match in one row, for those who draw it.
struct SearchHighlight {
    int row = 0; ///< Of the ring.
    ColumnRange columns;
    bool isCurrent = false;

    bool operator==(const SearchHighlight&) const = default;
};

/// Looks for text in a buffer, history included, slice by slice, so that its thread stays free.
///
/// Matches are kept from top to bottom, never one in another, and keep their rows while the screen
/// scrolls. What is searched stays searched: output is searched as it comes, a row of the screen
/// that changes takes only its logical line and what is below with it, and rows that leave the
/// history take their matches along. A reflow begins anew, and the current match stays the same
/// one, counted from the end.
///
/// A logical line of more than 2,000 cells is searched in parts; a match in it may be cut after
/// about as many.
///
/// Call `step` while it returns true, and again after output and after each change of the size;
/// `sync` alone follows the buffer without searching. Everything else tells what was found until
/// then. One thread at a time.
class SearchService {
public:
    /// More matches are not kept: the oldest give way.
    static constexpr std::size_t MostMatches = 500'000;

    /// Both must outlive the service.
    SearchService(const Buffer& buffer, const GraphemeTable& graphemes);

    /// Another buffer is active: it is searched from its beginning.
    void setBuffer(const Buffer& buffer);
    /// Begins a search. With an error nothing is looked for. The same query changes nothing.
    std::optional<SearchError> setQuery(const SearchQuery& query);
    [[nodiscard]] const SearchQuery& query() const { return m_query; }
    /// Forgets query and matches.
    void clear();

    /// Searches on, at least one line, until about so many rows are done or `isSpent` says so,
    /// which is asked after each line. True if more is left.
    bool step(int rows, const std::function<bool()>& isSpent = {});
    /// Drops what no longer stands in the buffer.
    void sync();
    /// Whether all of the buffer, as it was at the last step or sync, is searched.
    [[nodiscard]] bool isComplete() const;

    [[nodiscard]] std::size_t count() const { return m_matches.size(); }
    /// Whether there were more matches than are kept.
    [[nodiscard]] bool isCapped() const { return m_isCapped; }
    /// Lines, or parts of long ones, on which the pattern took too much; matches may miss there.
    [[nodiscard]] std::size_t givenUpLines() const { return m_givenUp.size(); }
    /// The match by its index, from the top.
    [[nodiscard]] const TextRange& match(std::size_t index) const { return m_matches[index]; }
    [[nodiscard]] std::optional<TextRange> current() const;
    [[nodiscard]] std::optional<std::size_t> currentIndex() const;

    /// Makes the match below or above the current one current; behind the last comes the first.
    /// Without a current one the search goes on from `origin`. None if there is no match.
    std::optional<TextRange> next();
    std::optional<TextRange> previous();
    /// Where `next` and `previous` begin, for example the view's first row. Then none is current.
    void setOrigin(TextPosition origin);

    /// All matches in rows of the ring, both inclusive, from top to bottom.
    [[nodiscard]] std::vector<SearchHighlight> highlights(int firstRow, int lastRow) const;

private:
    /// What a row looked like when it was searched.
    struct RowStamp {
        std::optional<std::size_t> text; ///< None if only `continues` mattered.
        bool continues = false;
    };
    struct Unit {
        int first; ///< The rows whose matches are wanted, of the ring.
        int last;
        int textFirst; ///< The rows around them that matches may look at.
        int textLast;
    };

    void restart();
    void dropEvicted();
    void dropFrom(std::int64_t row);
    [[nodiscard]] RowStamp stampOf(int ringRow);
    [[nodiscard]] bool stillShows(std::int64_t row, const RowStamp& stamp);
    [[nodiscard]] std::optional<std::int64_t> firstChangedRow();
    [[nodiscard]] std::int64_t rescanStart(std::int64_t row) const;
    [[nodiscard]] int partRows() const;
    [[nodiscard]] Unit unitAt(int ringRow) const;
    [[nodiscard]] int searchUnit();
    void findIn(const Unit& unit);
    void keep(const TextRange& match);
    void restoreCurrent();
    [[nodiscard]] std::size_t firstBehind(TextPosition place) const;
    std::optional<TextRange> choose(std::size_t index);
    [[nodiscard]] std::int64_t endRow() const
    {
        return m_buffer->linesTop + m_buffer->lines().count();
    }

    const Buffer* m_buffer;
    const GraphemeTable& m_graphemes;
    SearchQuery m_query;
    std::unique_ptr<SearchPattern> m_pattern;
    std::optional<SearchText> m_text;

    std::deque<TextRange> m_matches;
    /// Of the rows from `m_first` up to `m_next`, and behind it as far as was looked at.
    std::deque<RowStamp> m_stamps;
    std::set<std::int64_t> m_givenUp; ///< Where the units begin.
    std::int64_t m_first = 0;
    std::int64_t m_next = 0; ///< The row where the search goes on.
    bool m_isCapped = false;
    bool m_wasComplete = false; ///< At the end of the last step.

    std::optional<TextRange> m_current;
    TextPosition m_origin;
    std::optional<std::size_t> m_currentFromEnd; ///< Which match will be current again.

    // The buffer at the last sync.
    std::uint64_t m_numbering = 0;
    int m_cols = 0;
    int m_rows = 0;
    std::int64_t m_screenTop = 0;
};

} // namespace Kovalt
